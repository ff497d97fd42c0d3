// Another program's column store reads what we hand out, and hands its own rows to us.
#include <gtest/gtest.h>

#include "../EveryType.h"
#include "bench/DuckDb.h"
#include "kivtools/dataset/Arrow.h"

namespace kiv {
namespace {

class ArrowPeer : public testing::Test {
 protected:
  void SetUp() override {
    if (!bench::DuckDb::IsThere()) {
      GTEST_SKIP() << "DuckDB is not installed: scripts/bench-peers";
    }
  }
};

/// A column in words of both: the store's, and ours of what ShownValue gives.
struct Words {
  const char* sql;
  std::size_t field;
  std::string (*ours)(const std::string& shown) = [](const std::string& shown) { return shown; };
};

std::string Halves(const std::string& number) {
  return std::to_string(static_cast<std::int64_t>(std::stod(number) * 2));
}
std::string Guids(const std::string& shown) {
  std::string braced = shown;
  std::ranges::transform(braced, braced.begin(), [](char c) { return static_cast<char>(std::tolower(c)); });
  return braced.substr(1, braced.size() - 2);
}

const Words kWords[] = {
    {"id", 0},
    {"i2", 1},
    {"i4", 2},
    {"i8", 3},
    {"c", 4},
    {"cast(f * 2 as bigint)", 5, Halves},
    {"d", 6},
    {"t", 7},
    {"strftime(m, '%Y-%m-%d %H:%M:%S')", 8},
    {"s", 9},
    {"x", 10},
    {"w", 11},
    {"cast(b as varchar)", 12},
    {"g", 13, Guids},
    {"n", 14},
    {"octet_length(p)", 15, [](const std::string& shown) { return shown.substr(0, shown.find(' ')); }}};

TEST_F(ArrowPeer, ReadsWhatIsHandedOut) {
  for (const bool hasHeaps : {false, true}) {
    Dataset dataset = hasHeaps ? WithHeaps() : Dataset("t", EveryType());
    AddRows(dataset, 20'000);
    dataset.Set(RowId{19'999}, "s", "Şapte „ţări” €"_ro);
    dataset.Set(RowId{19'998}, "x", "Ăîâ"_ro);
    Edit(dataset, 3);
    bench::DuckDb store;
    ArrowArrayStream stream;
    ExportArrow(dataset.TakeSnapshot(), stream);
    store.Take("linii", stream);
    for (const Words& column : kWords) {
      const std::string sql = std::string("select coalesce(cast(") + column.sql + " as varchar), '-') from linii";
      const std::vector<std::string> theirs = store.Texts(sql.c_str());
      ASSERT_EQ(theirs.size(), dataset.RowCount());
      auto next = theirs.begin();
      for (const RowId row : dataset.Rows()) {
        const FieldRef field = dataset.FieldAt(column.field);
        const std::string ours =
            dataset.IsNull(row, field)
                ? "-"
                : column.ours(ShownValue(dataset.GetSchema().Fields()[column.field].type, dataset.View(row, field)));
        ASSERT_EQ(ours, *next) << column.sql << " " << static_cast<std::uint32_t>(row);
        ++next;
      }
    }
  }
}

TEST_F(ArrowPeer, HandsOutWhatIsTakenIn) {
  bench::DuckDb store;
  ArrowArrayStream stream = store.Columns(
      "select i::bigint as id, (i % 7)::smallint as i2, (i * 0.375)::decimal(19,4) as c, (i / 4.0)::double as f, "
      "date '2026-01-31' + i::integer as d, time '10:20:30' as t, "
      "timestamp '2026-01-31 14:30:00' + to_seconds(i) as m, "
      "case when i % 3 = 0 then null else 'șir ' || (i % 50) end as s, i % 2 = 0 as b, "
      "('x' || i)::blob as p, ('a' || i % 3)::enum('a0', 'a1', 'a2') as e, null::integer as gol "
      "from range(10000) r(i)");
  const Dataset read = ImportArrow(stream, "t", {.fields = {{"id", FieldType::Int64, kKey}}});
  ASSERT_EQ(read.RowCount(), 10'000U);
  for (std::uint32_t i = 0; i < 10'000; ++i) {
    const RowId row{i};
    ASSERT_EQ(read.GetInt64(row, "id"), i);
    ASSERT_EQ(read.GetInt64(row, "i2"), i % 7);
    ASSERT_EQ(read.GetDouble(row, "f"), i / 4.0);
    ASSERT_EQ(read.GetDateTime(row, "d"), DateTime(46053.0 + i));
    ASSERT_EQ(ShownValue(FieldType::Time, read.View(row, "t")), "10:20:30");
    ASSERT_EQ(read.IsNull(row, "s"), i % 3 == 0);
    ASSERT_EQ(read.GetText(row, "s"), i % 3 == 0 ? Text() : "şir "_ro + std::to_string(i % 50));
    ASSERT_EQ(read.GetBool(row, "b"), i % 2 == 0);
    ASSERT_EQ(read.GetText(row, "e"), "a" + std::to_string(i % 3));
    ASSERT_TRUE(read.IsNull(row, "gol"));
  }
  EXPECT_EQ(ShownValue(FieldType::DateTime, read.View(RowId{59}, "m")), "2026-01-31 14:30:59");
  EXPECT_EQ(ShownValue(FieldType::Currency, read.View(RowId{5}, "c")), "1.8750");
}

}  // namespace
}  // namespace kiv
