#include <benchmark/benchmark.h>

#include "bench/DatasetOrders.h"
#include "bench/DuckDb.h"
#include "bench/SqliteLines.h"

// A million rows in the order of town and day: made from rows that are there, and kept while rows are added one by one.
// Every peer's order is compared with ours before it is timed.

namespace {

using namespace bench;

class SqliteOrder {
 public:
  void Order() {
    while (sqlite3_step(numbers_.get()) == SQLITE_ROW) {
      benchmark::DoNotOptimize(sqlite3_column_int(numbers_.get(), 0));
    }
  }
  void Disorder() { sqlite3_reset(numbers_.get()); }
  template <class Take>
  void ForEach(Take&& take) {
    while (sqlite3_step(rows_.get()) == SQLITE_ROW) {
      take(reinterpret_cast<const char*>(sqlite3_column_text(rows_.get(), 0)), sqlite3_column_int(rows_.get(), 1));
    }
    sqlite3_reset(rows_.get());
  }

 private:
  SqliteLines lines_ = Filled<SqliteLines>(kRows);
  SqliteStatement numbers_ = Prepare(lines_.Database(), "select rowid from linii order by oras, zi");
  SqliteStatement rows_ = Prepare(lines_.Database(), "select oras, zi from linii order by oras, zi");
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
  static SqliteOrder lines;
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
  slow("Dataset/insert_in_order_of_1000000/kiv", &InsertIntoOrder<KivOrdered>)->Iterations(3);
  slow("Dataset/insert_in_order_of_1000000/multi_index_without_log", &InsertIntoOrder<OrderedMultiIndex>)
      ->Iterations(3);
  return true;
}();

}  // namespace
