// The part of the filter language that SQLite has too gives the same rows there.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>

#include "../FilterTexts.h"
#include "kivtools/dataset/Filter.h"
#include "kivtools/dataset/Loader.h"

namespace kiv {
namespace {

const FilterFields& Common() {
  static const FilterFields fields = {
      .numbers = {"i", "j", "f"},
      .texts = {"s", "u", "s || u"},
      .flags = {"b"},
      .anything = {"i", "f", "s", "b", "(i + j)", "(b or i > 2)", "null"},
      .numberLiterals = {"0", "1", "3", "-2", "5", "2.5", "-0.5", "null"},
      .textLiterals = {"'a'", "'ab'", "'B'", "''", "null", "'a%b'"},
      .patterns = {"'a%'", "'%b'", "'_'", "'%'", "''", "'a!%%' escape '!'", "'%B_'"},
      .conditions = {"b", "true", "false", "null", "(b) = (i > j)", "i between j and f", "2 in (i, j, 3)",
                     "s not in ('a', u)", "not b", "(s < u) is null", "Length(s) > 1", "abs(i) = 2",
                     "coalesce(f, i, 0) > 1", "lower(s) = 'ab'"},
      .moreNumbers = {"Length(s)", "abs(i)", "coalesce(i, 7)", "-j"}};
  return fields;
}

using Database = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;

Database Open() {
  sqlite3* opened = nullptr;
  EXPECT_EQ(sqlite3_open(":memory:", &opened), SQLITE_OK);
  return {opened, sqlite3_close};
}

void RunSql(const Database& database, const Text& sql) {
  ASSERT_EQ(sqlite3_exec(database.get(), sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
      << sql << ": " << sqlite3_errmsg(database.get());
}

std::vector<RowId> Select(const Database& database, const Text& condition) {
  std::vector<RowId> rows;
  sqlite3_stmt* made = nullptr;
  const Text sql = "select id from t where " + condition + " order by id";
  EXPECT_EQ(sqlite3_prepare_v2(database.get(), sql.c_str(), -1, &made, nullptr), SQLITE_OK)
      << sql << ": " << sqlite3_errmsg(database.get());
  while (sqlite3_step(made) == SQLITE_ROW) {
    rows.push_back(RowId{static_cast<std::uint32_t>(sqlite3_column_int64(made, 0))});
  }
  sqlite3_finalize(made);
  return rows;
}

TEST(FilterPeer, RowsAreThoseOfSqlite) {
  Dataset dataset("t", {{"i", FieldType::Int32},
                        {"j", FieldType::Int64},
                        {"f", FieldType::Double},
                        {"s", FieldType::Text, 0, {}, {}, Collation::Binary},
                        {"u", FieldType::Text, 0, {}, {}, Collation::Binary},
                        {"b", FieldType::Boolean}});
  const Database database = Open();
  RunSql(
      database,
      "pragma case_sensitive_like = on; create table t (id integer primary key, i int, j int, f real, s text, u text, "
      "b int); begin");
  const StringList texts = {"a", "ab", "B", "", "a%b", "abc", "aB", "b"};
  std::mt19937 random(7);
  for (int row = 0; row < 3000; ++row) {
    const auto below = [&](std::uint32_t limit) { return static_cast<int>(random() % limit); };
    const auto orNull = [&](ValueView value) { return below(5) == 0 ? ValueView() : value; };
    const ValueView values[] = {orNull(below(9) - 3),
                                orNull(below(9) - 3),
                                orNull((below(9) - 3) * 0.5),
                                orNull(texts[static_cast<std::size_t>(below(8))]),
                                orNull(texts[static_cast<std::size_t>(below(8))]),
                                orNull(below(2) == 0)};
    std::vector<FieldValue> fields;
    Text sql = "insert into t values (" + std::to_string(row);
    for (std::size_t i = 0; i < std::size(values); ++i) {
      fields.push_back({dataset.FieldAt(i), values[i]});
      const Text shown = ShownValue(dataset.GetSchema().Fields()[i].type, values[i]);
      sql += values[i].IsNull() ? ", null" : i == 3 || i == 4 ? ", '" + shown + "'" : ", " + shown;
    }
    dataset.Insert(fields);
    RunSql(database, sql + ")");
  }
  FilterTexts made(Common(), 99);
  int compared = 0;
  for (int i = 0; i < 1500; ++i) {
    const Text text = made.Condition(i % 5);
    std::vector<RowId> selected;
    try {
      selected = Filter(dataset, text).Select();
    } catch (const FilterError&) {
      continue;  // a null as the model of a like, which is a text there
    }
    ++compared;
    ASSERT_EQ(selected, Select(database, text)) << text;
  }
  EXPECT_GT(compared, 1400);
}

}  // namespace
}  // namespace kiv
