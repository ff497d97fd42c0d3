#include "Expect.h"
#include "kivtools/dataset/Schema.h"

namespace kiv {
namespace {

using namespace kiv::literals;

TEST(Schema, FindsFieldsWithoutCase) {
  const Schema schema({{"id", FieldType::AutoInc, kKey},
                       {"Suma", FieldType::Currency},
                       {"\xDE"
                        "ara",
                        FieldType::Text, 40}});
  EXPECT_EQ(schema.Fields().size(), 3U);
  const struct {
    TextView name;
    std::optional<std::size_t> place;
  } kCases[] = {{"id", 0},
                {"ID", 0},
                {"suma", 1},
                {"\xFE"
                 "ARA",
                 2},
                {"sum", std::nullopt},
                {"sumax", std::nullopt},
                {"", std::nullopt}};
  for (const auto& [name, place] : kCases) {
    EXPECT_EQ(schema.IndexOf(name), place) << name;
  }
  ASSERT_EQ(schema.KeyFields().size(), 1U);
  EXPECT_EQ(schema.KeyFields()[0], 0);
}

TEST(Schema, RefusesWhatNoDatasetCanHold) {
  const Text longest(63, 'a');
  EXPECT_NO_THROW(Schema({{longest, FieldType::Int32}}));
  const struct {
    FieldDef field;
    TextView message;
  } kCases[] = {
      {{"", FieldType::Int32}, "Schema: campul \"\" nu are un nume permis"},
      {{"1a", FieldType::Int32}, "Schema: campul \"1a\" nu are un nume permis"},
      {{"a b", FieldType::Int32}, "Schema: campul \"a b\" nu are un nume permis"},
      {{"a\xD7", FieldType::Int32}, "Schema: campul \"a\xD7\" nu are un nume permis"},
      {{"ALFA", FieldType::Int32}, "Schema: campul \"ALFA\" apare de doua ori"},
      {{"a", FieldType::Text, 32001}, "Schema: campul \"a\" are lungimea nepermisa 32001"},
      {{"a", FieldType::WideText, 16001}, "Schema: campul \"a\" are lungimea nepermisa 16001"},
      {{"a", FieldType::Text, -1}, "Schema: campul \"a\" are lungimea nepermisa -1"},
      {{"a", FieldType::Int32, 4}, "Schema: campul \"a\" are lungimea nepermisa 4"},
      {{"a", FieldType::Double, kKey}, "Schema: campul \"a\" de tip Double nu poate fi cheie"},
      {{"a", FieldType::Memo, kKey}, "Schema: campul \"a\" de tip Memo nu poate fi cheie"},
      {{"a", FieldType::Int32, kCheck | kNoCheck}, "Schema: campul \"a\" are doi indicatori care se contrazic"},
      {{"a", FieldType::Date, 0, kKey, {}, Collation::Binary},
       "Schema: campul \"a\" are o ordine a textelor nepermisa"},
      {{"a", FieldType::Text, 0, kKey, {}, static_cast<Collation>(3)},
       "Schema: campul \"a\" are o ordine a textelor nepermisa"},
      {{"a", static_cast<FieldType>(15)}, "Schema: campul \"a\" are un tip sau un indicator care nu exista"},
      {{"a", FieldType::Text, 2, kRequired, Text("abc")}, "Schema: campul \"a\" tine cel mult 2 octeti, nu 3"},
  };
  for (const auto& [field, message] : kCases) {
    ExpectError<Error>([field = field] { Schema(std::vector<FieldDef>{{"alfa", FieldType::Int32}, field}); }, message);
  }
  ExpectError<Error>([] { Schema(std::vector<FieldDef>()); }, "Schema: un set de date are 1..1024 campuri, nu 0");
}

TEST(Schema, MemosAndBlobsAreCheckedOnRequestOnly) {
  EXPECT_TRUE(FieldDef("a", FieldType::Int32).IsChecked());
  EXPECT_FALSE(FieldDef("a", FieldType::Int32, kNoCheck).IsChecked());
  EXPECT_FALSE(FieldDef("a", FieldType::Memo).IsChecked());
  EXPECT_TRUE(FieldDef("a", FieldType::Blob, kCheck).IsChecked());
}

}  // namespace
}  // namespace kiv
