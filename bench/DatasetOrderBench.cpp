#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include "bench/DatasetOrders.h"
#include "bench/DuckDb.h"

// A million rows in the order of town and day: made from rows that are there, and kept while rows are added one by one.
// Every peer's order is compared with ours before it is timed.

namespace {

using namespace bench;

class SqliteLines {
 public:
  SqliteLines() {
    Require(sqlite3_open(":memory:", &database_) == SQLITE_OK, "sqlite3_open");
    Execute("create table linii(id integer primary key, zi integer, suma integer, pret real, oras text, nume text)");
    Execute("begin");
    sqlite3_stmt* const insert = Prepare("insert into linii values(?,?,0,0,?,?)");
    for (const Line& line : Lines()) {
      sqlite3_bind_int(insert, 1, line.id);
      sqlite3_bind_int(insert, 2, line.day);
      sqlite3_bind_text(insert, 3, line.town.data(), static_cast<int>(line.town.size()), SQLITE_STATIC);
      sqlite3_bind_text(insert, 4, line.name.data(), static_cast<int>(line.name.size()), SQLITE_STATIC);
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    Execute("commit");
    numbers_ = Prepare("select rowid from linii order by oras, zi");
    rows_ = Prepare("select oras, zi from linii order by oras, zi");
  }
  SqliteLines(const SqliteLines&) = delete;
  SqliteLines& operator=(const SqliteLines&) = delete;
  ~SqliteLines() {
    sqlite3_finalize(numbers_);
    sqlite3_finalize(rows_);
    sqlite3_close(database_);
  }
  void Order() {
    while (sqlite3_step(numbers_) == SQLITE_ROW) {
      benchmark::DoNotOptimize(sqlite3_column_int(numbers_, 0));
    }
  }
  void Disorder() { sqlite3_reset(numbers_); }
  template <class Take>
  void ForEach(Take&& take) {
    while (sqlite3_step(rows_) == SQLITE_ROW) {
      take(reinterpret_cast<const char*>(sqlite3_column_text(rows_, 0)), sqlite3_column_int(rows_, 1));
    }
    sqlite3_reset(rows_);
  }

 private:
  void Execute(const char* sql) { Require(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql); }
  sqlite3_stmt* Prepare(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    Require(sqlite3_prepare_v2(database_, sql, -1, &statement, nullptr) == SQLITE_OK, sql);
    return statement;
  }
  sqlite3* database_ = nullptr;
  sqlite3_stmt* numbers_ = nullptr;
  sqlite3_stmt* rows_ = nullptr;
};

KivOrdered& Ordered() {
  static KivOrdered kiv(kRows);
  return kiv;
}

std::uint64_t OurDigest() {
  static const std::uint64_t digest = [] {
    Ordered().Order();
    const std::uint64_t made = DigestOf(Ordered());
    Ordered().Disorder();
    return made;
  }();
  return digest;
}

template <class Container>
void SortAll(benchmark::State& state, Container& container) {
  for (auto _ : state) {
    container.Order();
    state.PauseTiming();
    container.Disorder();
    state.ResumeTiming();
  }
}

void SortKiv(benchmark::State& state) {
  OurDigest();
  SortAll(state, Ordered());
}
void SortSqlite(benchmark::State& state) {
  static SqliteLines lines;
  static const bool isSame = DigestOf(lines) == OurDigest();
  Require(isSame, "SQLite's order of a dataset");
  SortAll(state, lines);
}

class DuckLines {
 public:
  DuckLines() {
    database_.Fill("linii", "id integer, zi integer, oras varchar", kRows, [](std::size_t row) {
      const Line& line = Lines()[row];
      return std::to_string(row) + "," + std::to_string(line.day) + ",'" + line.town + "'";
    });
  }
  void Order() { database_.Run(kInOrder); }
  void Disorder() {}
  template <class Take>
  void ForEach(Take&& take) {
    database_.ForEachNumber(kInOrder, [&](std::int64_t row) {
      const Line& line = Lines()[static_cast<std::size_t>(row)];
      take(std::string_view(line.town), line.day);
    });
  }

 private:
  static constexpr const char* kInOrder = "select id from linii order by oras, zi";
  DuckDb database_;
};

void SortDuckDb(benchmark::State& state) {
  static DuckLines lines;
  static const bool isSame = DigestOf(lines) == OurDigest();
  Require(isSame, "DuckDB's order of a dataset");
  SortAll(state, lines);
}
void SortMultiIndex(benchmark::State& state) {
  static OrderOfLines lines;
  SortAll(state, lines);
}

/// What the order is after the insertions, worked out without any of the containers.
std::uint64_t DigestAfterInsertions() {
  static const std::uint64_t digest = [] {
    std::vector<std::pair<std::string_view, std::int32_t>> places;
    for (const Line& line : Lines()) {
      places.emplace_back(line.town, line.day);
    }
    for (const Line& line : NewLines()) {
      places.emplace_back(line.town, line.day);
    }
    std::ranges::sort(places);
    OrderDigest made;
    for (const auto& [town, day] : places) {
      made(town, day);
    }
    return made.Get();
  }();
  return digest;
}

template <class Container>
void InsertIntoOrder(benchmark::State& state) {
  const std::vector<Line>& lines = NewLines();
  for (auto _ : state) {
    state.PauseTiming();
    auto container = std::make_unique<Container>(kRows);
    if constexpr (requires { container->Order(); }) {
      container->Order();
    }
    state.ResumeTiming();
    for (const Line& line : lines) {
      container->Add(line);
    }
    state.PauseTiming();
    Require(DigestOf(*container) == DigestAfterInsertions(), "the order after insertions");
    container.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kNewLines));
}

[[maybe_unused]] const bool kRegistered = [] {
  const auto slow = [](const char* name, auto* run) {
    return benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond);
  };
  slow("Dataset/sort_by_town_and_day_1000000/kiv", &SortKiv);
  slow("Dataset/sort_by_town_and_day_1000000/sqlite", &SortSqlite);
  if (DuckDb::IsThere()) {
    slow("Dataset/sort_by_town_and_day_1000000/duckdb", &SortDuckDb);
  }
  slow("Dataset/ordered_index_bulk_1000000/kiv", &SortKiv);
  slow("Dataset/ordered_index_bulk_1000000/multi_index", &SortMultiIndex);
  slow("Dataset/insert_in_order_of_1000000/kiv_logged", &InsertIntoOrder<KivOrdered>)->Iterations(3);
  slow("Dataset/insert_in_order_of_1000000/multi_index_without_log", &InsertIntoOrder<OrderedMultiIndex>)
      ->Iterations(3);
  return true;
}();

}  // namespace
