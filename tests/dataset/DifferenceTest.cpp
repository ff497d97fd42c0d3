#include <gtest/gtest.h>

#include <array>
#include <map>
#include <random>

#include "EveryType.h"
#include "Show.h"
#include "kivtools/dataset/Difference.h"

namespace kiv {
namespace {

const std::vector<FieldDef> kFields = {
    {"cont", FieldType::Text, 5}, {"an", FieldType::Int32}, {"sold", FieldType::Currency}};
using Rows = std::map<std::pair<Text, std::int64_t>, std::optional<std::int64_t>>;

Dataset Of(const Rows& rows, const std::vector<FieldDef>& fields = kFields) {
  Dataset dataset("t", Schema(fields));
  Loader loader(dataset);
  for (const auto& [key, sold] : rows) {
    std::vector<ValueView> values;
    values.reserve(fields.size());
    for (const FieldDef& field : fields) {
      values.push_back(field.name == "cont"           ? ValueView(key.first)
                       : field.name == "an"           ? ValueView(key.second)
                       : field.name == "sold" && sold ? ValueView(Currency::FromRaw(*sold))
                                                      : ValueView());
    }
    loader.Add(values);
  }
  loader.Finish();
  return dataset;
}

Rows Random(std::mt19937& random) {
  Rows rows;
  for (auto i = random() % 30; i > 0; --i) {
    const auto sold = static_cast<std::int64_t>(random() % 3);
    rows[{Text(1, "abcd"[random() % 4]), static_cast<std::int64_t>(random() % 5)}] =
        sold == 0 ? std::nullopt : std::optional(sold);
  }
  return rows;
}

TEST(Difference, MakesTheOneOfTheOtherAndNoMore) {
  std::mt19937 random(3);
  const std::array key = {Text("an"), Text("cont")};
  for (int i = 0; i < 300; ++i) {
    const Rows before = Random(random);
    const Rows after = Random(random);
    Dataset made = Difference(
        Of(before), Of(after, {{"sold", FieldType::Currency}, {"an", FieldType::Int32}, {"cont", FieldType::Text, 9}}),
        key);
    Rows seen;
    for (const RowId row : made.Rows()) {
      const auto sold = made.IsNull(row, "sold") ? std::nullopt : std::optional(made.GetCurrency(row, "sold").Raw());
      seen[{Text(made.GetText(row, "cont")), made.GetInt64(row, "an")}] = sold;
    }
    ASSERT_EQ(seen, after);
    std::size_t changed = 0;
    std::size_t kept = 0;
    for (const auto& [rowKey, sold] : before) {
      const auto met = after.find(rowKey);
      kept += met == after.end() ? 0 : 1;
      changed += met == after.end() || met->second != sold ? 1 : 0;
    }
    const Delta delta = made.Changes().MakeDelta();
    ASSERT_EQ(delta.Count(), changed + after.size() - kept);
    made.Changes().CancelChanges();
    ASSERT_EQ(made.RowCount(), before.size());
  }
}

TEST(Difference, TakesTheKeyOfTheFirstAndRefusesWhatDoesNotFit) {
  std::vector<FieldDef> keyed = kFields;
  keyed[0].flags = kKey | kReadOnly;
  const Rows rows = {{{"a", 1}, 5}};
  EXPECT_EQ(Difference(Of(rows, keyed), Of({{{"a", 2}, 5}})).ChangeCount(), 1U);
  const struct {
    std::vector<FieldDef> fields;
    std::vector<Text> key;
    TextView message;
  } kCases[] = {
      {kFields, {}, "Difference: lipseste cheia dupa care se recunosc randurile"},
      {kFields, {"ani"}, "Difference: campul \"ani\" nu exista"},
      {kFields, {"an"}, "Difference: cheia 1 apare de doua ori in al doilea set de date"},
      {{kFields[0], kFields[1]}, {"an"}, "Difference: campul \"sold\" lipseste in al doilea set de date"},
      {{kFields[0], kFields[1], kFields[2], {"x", FieldType::Int32}},
       {"an"},
       "Difference: campul \"x\" lipseste in primul set de date"},
      {{kFields[0], {"an", FieldType::Int64}, kFields[2]},
       {"an"},
       "Difference: campul \"an\" este de tip Int32 si Int64"},
  };
  for (const auto& [fields, key, message] : kCases) {
    try {
      static_cast<void>(Difference(Of(rows), Of({{{"a", 1}, 5}, {{"b", 1}, 5}}, fields), key));
      ADD_FAILURE() << message;
    } catch (const Error& error) {
      EXPECT_EQ(TextView(error.what()), message);
    }
  }
}

}  // namespace
}  // namespace kiv
