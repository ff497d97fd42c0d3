#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "Expect.h"
#include "kivtools/dataset/Dataset.h"

namespace kiv {
namespace {

using namespace kiv::literals;

Dataset Lines() {
  return {"linii",
          {{"id", FieldType::AutoInc, kKey},
           {"partener", FieldType::Text, 40, kRequired},
           {"data", FieldType::Date},
           {"suma", FieldType::Currency, kNoCheck, 5_lei},
           {"obs", FieldType::Memo}}};
}

/// A dataset of one field "v" behind a key that counts itself.
Dataset OneField(FieldType type, std::int32_t size = 0) {
  return {"unul", {{"id", FieldType::AutoInc, kKey}, {"v", type, size}}};
}

constexpr Guid kGuid{0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};

TEST(Dataset, NewRowsGetDefaultsAndTemporaryNumbers) {
  Dataset lines = Lines();
  const RowId first = lines.Insert({{"partener",
                                     "\xAA"
                                     "apte Arini"},
                                    {"data", DateTime::Encode(2026, 1, 31)}});
  const RowId second = lines.Insert({{"partener", "Alfa"}, {"suma", Null{}}, {"obs", "vechi"}});
  EXPECT_EQ(lines.GetInt64(first, "id"), -1);
  EXPECT_EQ(lines.GetInt64(second, "ID"), -2);
  EXPECT_EQ(lines.GetText(first, "partener"),
            "\xAA"
            "apte Arini");
  EXPECT_EQ(lines.GetDateTime(first, "data"), DateTime::Encode(2026, 1, 31));
  EXPECT_EQ(lines.GetCurrency(first, "suma"), 5_lei);
  EXPECT_TRUE(lines.IsNull(first, "obs"));
  EXPECT_TRUE(lines.IsNull(second, "suma"));
  EXPECT_EQ(lines.GetCurrency(second, "suma"), Currency());
  EXPECT_EQ(lines.Get(second, "suma"), Value(Null{}));
  EXPECT_EQ(lines.GetText(second, "obs"), "vechi");
  EXPECT_EQ(lines.RowCount(), 2U);
  EXPECT_EQ(lines.State(first), RowState::Inserted);
}

TEST(Dataset, TemporaryNumbersStayBelowThoseGiven) {
  Dataset lines = Lines();
  lines.Insert({{"id", -7}, {"partener", "Alfa"}});
  EXPECT_EQ(lines.GetInt64(lines.Insert({{"partener", "Beta"}}), "id"), -8);
  const RowId row = lines.Insert({{"id", 3}, {"partener", "Gama"}});
  lines.Set(row, "id", std::numeric_limits<std::int64_t>::min() + 1);
  ExpectError<Error>(
      [&] {
        lines.Insert({{"partener", "Delta"}});
      },
      "Dataset \"linii\": numerele temporare s-au terminat");
  EXPECT_EQ(lines.RowCount(), 3U);
}

TEST(Dataset, EveryTypeGivesBackWhatItGot) {
  constexpr auto kMin64 = std::numeric_limits<std::int64_t>::min();
  constexpr auto kMax64 = std::numeric_limits<std::int64_t>::max();
  const struct {
    FieldType type;
    std::int32_t size;
    Value value;
  } kCases[] = {
      {FieldType::Int16, 0, std::int64_t{-32768}},
      {FieldType::Int16, 0, std::int64_t{32767}},
      {FieldType::Int32, 0, std::int64_t{std::numeric_limits<std::int32_t>::min()}},
      {FieldType::Int64, 0, kMin64},
      {FieldType::Int64, 0, kMax64},
      {FieldType::Currency, 0, Currency::FromRaw(kMin64)},
      {FieldType::Double, 0, -1e308},
      {FieldType::Date, 0, DateTime::Encode(1, 1, 1)},
      {FieldType::Date, 0, DateTime::Encode(9999, 12, 31)},
      {FieldType::Time, 0, DateTime::Encode(1899, 12, 30, 23, 59, 59, 999)},
      {FieldType::DateTime, 0, DateTime::Encode(1, 1, 1, 6)},
      {FieldType::DateTime, 0, DateTime::Encode(1899, 12, 29, 6)},
      {FieldType::DateTime, 0, DateTime::Encode(9999, 12, 31, 23, 59, 59, 999)},
      {FieldType::Text, 3, Text("a\0\xFF", 3)},
      {FieldType::Text, 0, Text()},
      {FieldType::Text, 0, Text(32'000, 'x')},
      {FieldType::Text, 0, Text(32'001, 'x')},
      {FieldType::Text, 0, Text(200'000, 'x')},
      {FieldType::WideText, 2, WideText(u"\U0001F600")},
      {FieldType::WideText, 0, WideText(16'001, u'ș')},
      {FieldType::Boolean, 0, true},
      {FieldType::Guid, 0, kGuid},
      {FieldType::Memo, 0, Text(70'000, 'm')},
      {FieldType::Blob, 0, Bytes{0, 255, 1}},
      {FieldType::Blob, 0, Bytes{}},
      {FieldType::AutoInc, 0, kMax64},
  };
  for (const auto& [type, size, value] : kCases) {
    Dataset dataset = OneField(type, size);
    const RowId row = dataset.Insert({{"v", value}});
    EXPECT_EQ(dataset.Get(row, "v"), value) << static_cast<int>(type);
    dataset.Insert({{"v", value}});
    EXPECT_EQ(Value(dataset.Get(row, "v")), value) << static_cast<int>(type);
  }
}

TEST(Dataset, RefusesWhatAFieldCannotHold) {
  const struct {
    FieldType type;
    std::int32_t size;
    Value value;
    TextView message;
  } kCases[] = {
      {FieldType::Int16, 0, std::int64_t{32768}, "de tip Int16 nu poate tine valoarea 32768"},
      {FieldType::Int16, 0, std::int64_t{-32769}, "de tip Int16 nu poate tine valoarea -32769"},
      {FieldType::Int32, 0, std::int64_t{2147483648}, "de tip Int32 nu poate tine valoarea 2147483648"},
      {FieldType::Double, 0, std::numeric_limits<double>::quiet_NaN(), "nu poate tine o valoare care nu este un numar"},
      {FieldType::Double, 0, std::int64_t{9007199254740993},
       "de tip Double nu poate tine exact valoarea 9007199254740993"},
      {FieldType::Date, 0, DateTime(45000.5), "tine zile intregi, nu 45000.5"},
      {FieldType::Date, 0, DateTime(-693594), "nu poate tine ziua -693594"},
      {FieldType::Date, 0, DateTime(2958466), "nu poate tine ziua 2958466"},
      {FieldType::Time, 0, DateTime(1), "tine ore ale unei zile, nu 1"},
      {FieldType::Time, 0, DateTime(0.9999999999), "tine ore ale unei zile, nu 0.9999999999"},
      {FieldType::DateTime, 0, DateTime(2958466), "nu poate tine ziua 2958466"},
      {FieldType::Text, 3, Text("abcd"), "tine cel mult 3 octeti, nu 4"},
      {FieldType::WideText, 1, WideText(u"ab"), "tine cel mult 1 unitati, nu 2"},
      {FieldType::WideText, 0, WideText(1, char16_t{0xD800}), "nu poate tine un surogat UTF-16 fara pereche"},
      {FieldType::WideText, 0, WideText{0xDC00, 0xD800}, "nu poate tine un surogat UTF-16 fara pereche"},
  };
  for (const auto& [type, size, value, message] : kCases) {
    Dataset dataset = OneField(type, size);
    ExpectError<Error>(
        [&dataset, value = value] {
          dataset.Insert({{"v", value}});
        },
        "Dataset \"unul\": campul \"v\" " + Text(message));
    EXPECT_EQ(dataset.RowCount(), 0U);
  }
  Dataset wide = OneField(FieldType::WideText, 0);
  // What lies behind the value is no part of it.
  ExpectError<Error>(
      [&] {
        wide.Insert({{"v", std::u16string_view(u"\xD83D\xDE00").substr(0, 1)}});
      },
      "Dataset \"unul\": campul \"v\" nu poate tine un surogat UTF-16 fara pereche");
}

TEST(Dataset, ValuesOfAnotherKindAreRefusedBothWays) {
  Dataset lines = Lines();
  ExpectError<InvalidCast>(
      [&] {
        lines.Insert({{"partener", "Alfa"}, {"suma", 5}});
      },
      "Dataset \"linii\": campul \"suma\" este de tip Currency si nu primeste o valoare de alt fel");
  const RowId row = lines.Insert({{"partener", "Alfa"}});
  ExpectError<InvalidCast>(
      [&] { static_cast<void>(lines.GetInt64(row, "suma")); },
      "Dataset \"linii\": campul \"suma\" este de tip Currency si nu se citeste ca alt fel de valoare");
  EXPECT_THROW(static_cast<void>(lines.GetText(row, "id")), InvalidCast);
  EXPECT_EQ(OneField(FieldType::Double).Name(), "unul");
  Dataset doubles = OneField(FieldType::Double);
  EXPECT_EQ(doubles.GetDouble(doubles.Insert({{"v", 3}}), "v"), 3.0);
  EXPECT_FALSE(std::signbit(doubles.GetDouble(doubles.Insert({{"v", -0.0}}), "v")));
}

TEST(Dataset, RefusesNullsKeysAndRowsByName) {
  Dataset lines = Lines();
  const RowId row = lines.Insert({{"id", 17}, {"partener", "Alfa"}});
  const RowId other = lines.Insert({{"id", 18}, {"partener", "Beta"}});
  const Dataset foreign = Lines();
  const FieldRef foreignField = foreign.Field("suma");
  const struct {
    std::function<void()> act;
    TextView message;
  } kCases[] = {
      {[&] { lines.Insert({}); }, "campul \"partener\" trebuie completat"},
      {[&] { lines.Set(row, "partener", Null{}); }, "campul \"partener\" trebuie completat"},
      {[&] { lines.Set(row, "id", Null{}); }, "campul \"id\" trebuie completat"},
      {[&] {
         lines.Insert({{"id", 17}, {"partener", "Beta"}});
       },
       "cheia 17 exista deja"},
      {[&] { lines.Set(other, "id", 17); }, "cheia 17 exista deja"},
      {[&] { lines.Set(row, "nimic", 1); }, "campul \"nimic\" nu exista"},
      {[&] { lines.Set(row, foreignField, 1_lei); }, "campul este al altui set de date"},
      {[&] { lines.Set(RowId{2}, "suma", 1_lei); }, "randul 2 nu exista"},
      {[&] {
         static_cast<void>(lines.Find({1, 2}));
       },
       "cheia are 1 campuri, nu 2"},
  };
  for (const auto& [act, message] : kCases) {
    ExpectError<Error>(act, "Dataset \"linii\": " + Text(message));
  }
  EXPECT_EQ(lines.RowCount(), 2U);
  EXPECT_EQ(lines.Find(17), row);
  EXPECT_EQ(lines.Find(18), other);
}

TEST(Dataset, KeysFollowUpdatesAndDeletions) {
  Dataset dataset("chei",
                  {{"an", FieldType::Int16, kKey}, {"serie", FieldType::Text, 8, kKey}, {"v", FieldType::Int32}});
  const RowId row = dataset.Insert({{"an", 2026}, {"serie", "AA"}});
  dataset.Insert({{"an", 2026}, {"serie", ""}});
  EXPECT_EQ(dataset.Find({2026, "AA"}), row);
  EXPECT_TRUE(dataset.Find({2026, TextView()}).has_value());
  dataset.Set(row, "serie", "BB");
  EXPECT_EQ(dataset.Find({2026, "AA"}), std::nullopt);
  EXPECT_EQ(dataset.Find({2026, "BB"}), row);
  ExpectError<Error>(
      [&] {
        dataset.Insert({{"an", 2026}, {"serie", "BB"}});
      },
      "Dataset \"chei\": cheia 2026, \"BB\" exista deja");
  dataset.Delete(row);
  EXPECT_EQ(dataset.Find({2026, "BB"}), std::nullopt);
  EXPECT_FALSE(dataset.Exists(row));
  EXPECT_NE(dataset.Insert({{"an", 2026}, {"serie", "BB"}}), row);
}

TEST(Dataset, KeysOfMoreThan32BitsAreTold) {
  Dataset dataset("chei", {{"id", FieldType::Int64, kKey}});
  const std::int64_t wide = std::int64_t{5} << 32U;
  const RowId narrowRow = dataset.Insert({{"id", 0}});
  EXPECT_EQ(dataset.Find(wide), std::nullopt);
  std::vector<std::pair<std::int64_t, RowId>> rows = {{0, narrowRow}};
  for (std::int64_t i = 0; i < 5000; ++i) {
    const std::int64_t key = i % 2 == 0 ? wide + i : -1 - i;
    rows.emplace_back(key, dataset.Insert({{"id", key}}));
  }
  for (const auto& [key, row] : rows) {
    ASSERT_EQ(dataset.Find(key), row) << key;
  }
}

TEST(Dataset, ADayIsNotFoundByItsNumber) {
  Dataset days("zile", {{"zi", FieldType::Date, kKey}});
  days.Insert({{"zi", DateTime(46350.0)}});
  EXPECT_TRUE(days.Find({DateTime(46350.0)}).has_value());
  EXPECT_THROW(static_cast<void>(days.Find(46350)), InvalidCast);
}

TEST(Dataset, RowsAroundTheEdgesOfBlocksAreKept) {
  Dataset dataset("margini", {{"id", FieldType::Int32, kKey},
                              {"yes", FieldType::Boolean},
                              {"text", FieldType::Text},
                              {"guid", FieldType::Guid},
                              {"small", FieldType::Int16}});
  const auto guidOf = [](std::uint32_t i) { return Guid{i, 0, 0, {static_cast<std::uint8_t>(i)}}; };
  constexpr std::uint32_t kRows = 8192 * 2 + 5;
  for (std::uint32_t i = 0; i < kRows; ++i) {
    const ValueView small = i % 3 == 0 ? ValueView(Null{}) : ValueView(static_cast<std::int16_t>(i));
    ASSERT_EQ(
        dataset.Insert(
            {{"id", i}, {"yes", i % 7 == 0}, {"text", std::to_string(i % 100)}, {"guid", guidOf(i)}, {"small", small}}),
        RowId{i});
  }
  for (std::uint32_t i = 0; i < kRows; ++i) {
    const RowId row{i};
    ASSERT_EQ(dataset.GetInt64(row, "id"), i);
    ASSERT_EQ(dataset.GetBool(row, "yes"), i % 7 == 0);
    ASSERT_EQ(dataset.GetText(row, "text"), std::to_string(i % 100));
    ASSERT_EQ(dataset.GetGuid(row, "guid"), guidOf(i));
    ASSERT_EQ(dataset.IsNull(row, "small"), i % 3 == 0);
    ASSERT_EQ(dataset.GetInt64(row, "small"), i % 3 == 0 ? 0 : static_cast<std::int16_t>(i));
    ASSERT_EQ(dataset.Find(i), row);
  }
}

TEST(Dataset, ManyDifferentTextsLeaveTheDictionary) {
  Dataset dataset("texte", {{"id", FieldType::Int32, kKey}, {"text", FieldType::Text}});
  constexpr int kRows = 66'000;
  constexpr int kAccepted = 100;
  std::optional<Mark> whileNull;
  for (int i = 0; i < kRows; ++i) {
    dataset.Insert({{"id", i}, {"text", "t" + std::to_string(i)}});
    if (i == kAccepted) {
      dataset.Changes().AcceptChanges();
      dataset.Set(RowId{7}, "text", "altul");
      dataset.Set(RowId{8}, "text", Null());
      whileNull = dataset.Changes().SetMark();
      dataset.Set(RowId{8}, "text", "al treilea");
    }
  }
  for (int i = 0; i < kRows; ++i) {
    const Text expected = i == 7 ? "altul" : i == 8 ? "al treilea" : "t" + std::to_string(i);
    ASSERT_EQ(dataset.GetText(RowId{static_cast<std::uint32_t>(i)}, "text"), expected);
  }
  // So do the texts that rows had and may get back.
  EXPECT_EQ(dataset.Original(RowId{7}, "text"), Value("t7"));
  EXPECT_EQ(dataset.Original(RowId{8}, "text"), Value("t8"));
  dataset.Changes().RollbackTo(whileNull.value());
  EXPECT_EQ(dataset.RowCount(), kAccepted + 1U);
  EXPECT_TRUE(dataset.IsNull(RowId{8}, "text"));
  EXPECT_EQ(dataset.GetText(RowId{7}, "text"), "altul");
  dataset.Changes().CancelChanges();
  EXPECT_EQ(dataset.GetText(RowId{7}, "text"), "t7");
  EXPECT_EQ(dataset.GetText(RowId{8}, "text"), "t8");
}

TEST(Dataset, StatesFollowValues) {
  Dataset lines = Lines();
  const RowId row = lines.Insert({{"partener", "Alfa"}});
  lines.Set(row, "partener", "Beta");
  EXPECT_EQ(lines.State(row), RowState::Inserted);
  ExpectError<Error>([&] { static_cast<void>(lines.Original(row, "partener")); },
                     "Dataset \"linii\": randul 0 este nou si nu are valori initiale");
  lines.Delete(row);
  ExpectError<Error>([&] { static_cast<void>(lines.GetText(row, "partener")); },
                     "Dataset \"linii\": randul 0 nu exista");
  EXPECT_EQ(lines.RowCount(), 0U);
}

}  // namespace
}  // namespace kiv
