#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "EveryType.h"
#include "Expect.h"
#include "FilterTexts.h"
#include "dataset/query/Candidates.h"
#include "dataset/query/Evaluator.h"
#include "dataset/query/Selection.h"
#include "kivtools/dataset/Cursor.h"
#include "kivtools/dataset/Filter.h"

namespace kiv {
namespace {

const FilterFields& Fields() {
  static const FilterFields fields = {
      .numbers = {"i2", "i4", "i8", "c", "f", "id"},
      .texts = {"s", "x", "n", "Lower(s)", "Substr(x, 1, 5) || n", "RoToEn(s)"},
      .flags = {"b"},
      .anything = {"i2", "i8", "s", "x", "w", "b", "g", "n", "p", "(i2 + c)", "(b or i4 = 0)", "null"},
      .numberLiterals = {"0", "5", "-7", "100", "1000000", "12.5", "-0.0005", "0.00001", "1000.5", "null",
                         "9223372036854775807", "-9223372036854775808", "922337203685477.5807", "32768", "-32769",
                         "2199023255552", "2147483648"},
      .textLiterals = {"'oras 5'", "'oras 77'", "'Oras'", "''", "null", "'nou 3'"},
      .patterns = {"'oras 1%'", "'%7_'", "'%'", "''", "'oras 2__' escape '!'", "null"},
      .conditions = {"b",
                     "true",
                     "false",
                     "null",
                     "(b) = (i2 > 5)",
                     "d > {1902-01-01}",
                     "d = {1900-03-01 00:00}",
                     "d <= {1903-05-05 06:00}",
                     "m >= {1905-01-01}",
                     "m > d",
                     "t < {06:00:00.001}",
                     "t = {06:00}",
                     "d between {1901-01-01} and {1905-12-31 12:00}",
                     "Contains(n, '1')",
                     "StartsWith(s, 'oras 1')",
                     "w = 'ăă'",
                     "w < 'ăăă'",
                     "g = g",
                     "TestCNP(s)",
                     "Length(s) / (Length(x) - 6) > 2",
                     "i2 <> 0 and 100 / i2 > 3",
                     "i2 = 0 or 100 div i2 > 3",
                     "100 mod i4 = 1",
                     "i8 * i8 > 5",
                     "i8 + 9223372036850000000 > 0",
                     "d + i4 > d",
                     "f in (0.5, 7, 12)",
                     "Coalesce(i2, c, 3) > 10",
                     "Coalesce(b, false)",
                     "Year(d) = 1903 or Month(m) in (1, 2)",
                     "i4 between i2 and i8",
                     "c between f and 5"},
      .moreNumbers = {"Length(s)", "Abs(i2)", "-c", "Round(c * 1.5, 2)", "Year(m)", "(c / 7)", "(f / 3)", "Day(d)",
                      "(i4 mod 7)", "Coalesce(f, i2)", "Round(f)"}};
  return fields;
}

/// What a filter gives: its rows, or why it stops.
struct Outcome {
  std::vector<RowId> rows;
  Text fault;
  friend bool operator==(const Outcome&, const Outcome&) = default;
};

template <class Operation>
Outcome Of(Operation&& operation) {
  Outcome outcome;
  try {
    operation(outcome.rows);
  } catch (const FilterError& error) {
    outcome = {{}, error.what()};
  }
  return outcome;
}

Outcome ByRows(const Filter& filter, const DatasetView& view) {
  return Of([&](std::vector<RowId>& rows) {
    query::Evaluator evaluator(filter.GetTree());
    for (const RowId row : view.Rows()) {
      const store::Cell& truth =
          evaluator.Evaluate(filter.GetTree().Root(), view.GetContents(), static_cast<std::uint32_t>(row));
      if (!truth.isNull && truth.bits != 0) {
        rows.push_back(row);
      }
    }
  });
}

/// Those that this processor runs.
std::vector<const query::Kernels*> EveryKernels() {
  std::vector<const query::Kernels*> every = {&query::kPortableKernels, query::Sse2Kernels(), query::Avx2Kernels()};
  std::erase(every, nullptr);
  return every;
}

std::vector<Dataset> Datasets() {
  std::vector<Dataset> datasets;
  for (const std::uint32_t count : {0U, 5U, 700U, 4200U}) {
    datasets.emplace_back("arhiva", EveryType());
    AddRows(datasets.back(), count);
  }
  Edit(datasets.back(), 1);
  datasets.push_back(WithHeaps());
  AddRows(datasets.back(), 2100);
  Edit(datasets.back(), 2);
  return datasets;
}

TEST(FilterVectors, GiveTheRowsOfThePlainEvaluator) {
  const std::vector<Dataset> datasets = Datasets();
  FilterTexts texts(Fields(), 13);
  int compiled = 0;
  int faulty = 0;
  for (int i = 0; i < 400; ++i) {
    const Text text = FromUtf8(texts.Condition(i % 4));
    for (const Dataset& dataset : datasets) {
      std::optional<Filter> filter;
      try {
        filter.emplace(dataset, text);
      } catch (const FilterError&) {
        break;  // kinds that do not go together
      }
      ++compiled;
      const Outcome expected = ByRows(*filter, dataset);
      faulty += expected.fault.empty() ? 0 : 1;
      for (const query::Kernels* kernels : EveryKernels()) {
        ASSERT_EQ(Of([&](auto& rows) { rows = SelectRows(filter->GetTree(), dataset.GetContents(), *kernels); }),
                  expected)
            << text;
      }
      if (expected.fault.empty()) {
        ASSERT_EQ(filter->Count(), expected.rows.size()) << text;
        ASSERT_TRUE(expected.rows.empty() || filter->Test(expected.rows.back())) << text;
      }
    }
  }
  EXPECT_GT(compiled, 1000);
  EXPECT_GT(faulty, 20);
  EXPECT_LT(faulty, compiled / 2);
}

/// Orders in whose indexes values are looked up.
constexpr TextView kOrders[] = {
    "i2", "c desc nulls last, id", "s", "x desc nulls last", "n binary", "d", "f desc", "m nulls last", "b", "w"};
/// Conditions that few rows pass, and some that look so.
constexpr TextView kNarrow[] = {"id = 17",
                                "17 = id",
                                "id in (3, 5, 4000, 5)",
                                "id = 12.5",
                                "i2 = 7",
                                "i2 > 197",
                                "i2 < 2 and i2 <> 1",
                                "i2 in (3, 4)",
                                "i2 between 150 and 151",
                                "c = 0.0005",
                                "c < -0.0005",
                                "f < 3",
                                "f between 5 and 5.5",
                                "d = {1900-01-05}",
                                "d between {1900-01-03} and {1900-01-06 12:00}",
                                "m <= {1900-01-09 12:00}",
                                "s = 'oras 77'",
                                "s < 'oras 1'",
                                "s >= 'oras 98'",
                                "x = 'oras 78'",
                                "x < 'oras 1'",
                                "x >= 'oras 98'",
                                "x between 'oras 5' and 'oras 52'",
                                "n = 'oras 100'",
                                "n > 'oras 2'",
                                "w = 'ăă'",
                                "s <> 'oras 1'",
                                "s = null",
                                "i2 in (3, 4) and 100 div (i2 - 3) > 1",
                                "i2 = 7 and 100 div (i4 - i4) > 1",
                                "id = 17 and 1 / (id - 17) > 0",
                                "f < 3 and 5 / (i2 - 1) > 1",
                                "b = true"};

TEST(FilterVectors, FindTheSameRowsAmongThoseOfAnIndex) {
  std::vector<Dataset> datasets = Datasets();
  FilterTexts texts(Fields(), 17);
  int few = 0;
  int faulty = 0;
  for (std::size_t at = 2; at < datasets.size(); ++at) {
    Dataset& dataset = datasets[at];
    std::vector<Cursor> orders;
    for (const TextView order : kOrders) {
      orders.emplace_back(dataset).OrderBy(order);
    }
    for (std::size_t i = 0; i < 20 * std::size(kNarrow); ++i) {
      Text text(kNarrow[i % std::size(kNarrow)]);
      if (i % 3 != 0) {
        text += " and " + texts.Condition(1);
      }
      if (i % 4 == 0) {
        text.insert(0, texts.Condition(1) + " and ");
      }
      text = FromUtf8(text);
      std::optional<Filter> filter;
      try {
        filter.emplace(dataset, text);
      } catch (const FilterError&) {
        continue;  // kinds that do not go together
      }
      const Outcome expected = ByRows(*filter, dataset);
      const auto passing = [&](auto& rows) {
        for (const std::uint32_t row : query::PassingRows(dataset.GetStore(), filter->GetTree())) {
          rows.push_back(RowId{row});
        }
      };
      ASSERT_EQ(Of(passing), expected) << text;
      const bool isFew = query::FewCandidates(dataset.GetStore(), filter->GetTree()).has_value();
      few += isFew ? 1 : 0;
      faulty += isFew && !expected.fault.empty() ? 1 : 0;
      const auto walked = [&](auto& rows) {
        Cursor cursor(dataset);
        cursor.OrderBy("x, id desc");
        cursor.Filter(text);
        while (cursor.Next()) {
          rows.push_back(cursor.Row());
        }
        Cursor all(dataset);
        all.OrderBy("x, id desc");
        std::vector<RowId> inOrder;
        while (all.Next()) {
          if (filter->Test(all.Row())) {
            inOrder.push_back(all.Row());
          }
        }
        EXPECT_EQ(rows, inOrder) << text;
        std::ranges::sort(rows);
      };
      if (i % 16 == 0) {
        ASSERT_EQ(Of(walked), expected) << text;
      }
    }
  }
  EXPECT_GT(few, 300);
  EXPECT_GT(faulty, 10);
}

TEST(FilterVectors, LookIntoAnIndexOfTextsThatComparesAsTheyDo) {
  Dataset codes("coduri", {{"cod", FieldType::Text, 20, kKey, {}, Collation::RomanianNoCase}});
  codes.Insert({{"cod", "Alfa"}});
  codes.Insert({{"cod", "ALFA"}});
  for (int i = 0; i < 100; ++i) {
    codes.Insert({{"cod", "b" + std::to_string(i)}});
  }
  for (const TextView order : {"", "cod", "cod binary", "cod ro"}) {
    Cursor ordered(codes);
    ordered.OrderBy(order);
    Cursor cursor(codes);
    cursor.Filter("cod = 'alfa'");
    EXPECT_EQ(cursor.Count(), 2U) << order;
    const Filter filter(codes, "cod <= 'ALFA'");
    EXPECT_EQ(query::FewCandidates(codes.GetStore(), filter.GetTree()).has_value(), order == "cod") << order;
    EXPECT_EQ(query::PassingRows(codes.GetStore(), filter.GetTree()).size(), 2U) << order;
  }
}

/// Numbers at the ends of their types, of every column width, beside the edges of batches and blocks.
TEST(FilterVectors, MeetEveryEndOfNumbersAndBatches) {
  Dataset dataset("capete", {{"i2", FieldType::Int16},
                             {"i4", FieldType::Int32},
                             {"i8", FieldType::Int64},
                             {"c", FieldType::Currency},
                             {"f", FieldType::Double}});
  constexpr std::uint32_t kRows = 8192 + 2048 + 65;
  const std::int64_t ends[] = {
      std::numeric_limits<std::int64_t>::min(), -4294967296, -4294967295, -1, 0, 1, 2147483647, 2147483648, 4294967295,
      std::numeric_limits<std::int64_t>::max()};
  const double doubles[] = {-std::numeric_limits<double>::infinity(), -1e308, -1, 0, 5e-324, 1, 1e308,
                            std::numeric_limits<double>::infinity()};
  Loader loader(dataset);
  for (std::uint32_t i = 0; i < kRows; ++i) {
    const std::int64_t end = ends[i % std::size(ends)];
    const auto narrow = [&](std::int64_t least, std::int64_t most) { return std::clamp(end, least, most); };
    loader.Add({i % 7 == 0 ? ValueView() : ValueView(narrow(-32768, 32767)), narrow(-2147483648, 2147483647), end,
                Currency::FromRaw(end), doubles[i % std::size(doubles)]});
  }
  loader.Finish();
  for (const TextView field : {"i2", "i4", "i8", "c", "f"}) {
    for (const TextView bound :
         {"-9223372036854775808", "9223372036854775807", "-32768", "32767", "32768", "-2147483649", "2147483647",
          "4294967295", "0", "-0.5", "0.0001", "-429496.7296", "922337203685477.5807"}) {
      for (const TextView relation : {"<", "<=", "=", "<>", ">=", ">"}) {
        for (const bool isMirrored : {false, true}) {
          Text text(isMirrored ? bound : field);
          text.append(relation).append(isMirrored ? field : bound);
          const Filter filter(dataset, text);
          const Outcome expected = ByRows(filter, dataset);
          for (const query::Kernels* kernels : EveryKernels()) {
            ASSERT_EQ(Of([&](auto& rows) { rows = SelectRows(filter.GetTree(), dataset.GetContents(), *kernels); }),
                      expected)
                << text;
          }
        }
      }
    }
  }
}

TEST(FilterVectors, SumWhatPasses) {
  Dataset dataset("sume", EveryType());
  AddRows(dataset, 9000);
  Edit(dataset, 3);
  for (const TextView text : {"true", "i2 > 50", "id < 3000 and b", "false", "c is null"}) {
    const Filter filter(dataset, text);
    for (const TextView field : {"id", "i2", "i4", "c", "f"}) {
      std::int64_t sum = 0;
      double total = 0;
      bool isThere = false;
      for (const RowId row : filter.Select()) {
        const Value value = dataset.Get(row, field);
        isThere |= value != Value();
        sum += std::holds_alternative<std::int64_t>(value) ? std::get<std::int64_t>(value)
               : std::holds_alternative<Currency>(value)   ? std::get<Currency>(value).Raw()
                                                           : 0;
        total += std::holds_alternative<double>(value) ? std::get<double>(value) : 0;
      }
      const Value expected = !isThere       ? Value()
                             : field == "f" ? Value(total)
                             : field == "c" ? Value(Currency::FromRaw(sum))
                                            : Value(sum);
      EXPECT_EQ(filter.Sum(field), expected) << text << " " << field;
      const std::size_t index = *dataset.GetSchema().IndexOf(field);
      for (const query::Kernels* kernels : EveryKernels()) {
        EXPECT_EQ(SumRows(filter.GetTree(), dataset.GetContents(), index, *kernels), expected) << text << " " << field;
      }
    }
  }
}

TEST(FilterVectors, RefuseASumThat64BitsDoNotHold) {
  Dataset dataset("sume", {{"i", FieldType::Int64}, {"f", FieldType::Double}, {"s", FieldType::Text}});
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  for (const std::int64_t value : {kMost, std::int64_t{-5}, kMost, -kMost}) {
    dataset.Insert({{"i", value}, {"f", 1e308}});
  }
  // What leaves 64 bits on the way does no harm.
  EXPECT_EQ(Filter(dataset, "true").Sum("i"), Value(kMost - 5));
  ExpectError<Error>([&] { static_cast<void>(Filter(dataset, "i > 0").Sum("i")); },
                     "Dataset \"sume\": suma campului \"i\" nu incape in tipul sau");
  ExpectError<Error>([&] { static_cast<void>(Filter(dataset, "true").Sum("f")); },
                     "Dataset \"sume\": suma campului \"f\" nu incape in tipul sau");
  ExpectError<InvalidCast>([&] { static_cast<void>(Filter(dataset, "true").Sum("s")); },
                           "Dataset \"sume\": campul \"s\" este de tip Text si nu se aduna");
  ExpectError<Error>([&] { static_cast<void>(Filter(dataset, "true").Sum("x")); },
                     "Dataset \"sume\": campul \"x\" nu exista");
}

}  // namespace
}  // namespace kiv
