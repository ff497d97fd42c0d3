#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sqlite3.h>

#include <cstdint>
#include <memory>

#include "bench/DatasetContainers.h"

// A million rows of six fields: number, day, amount, double, one of 1,000 towns, a name. What is compared holds the
// same rows; each container is asked for the sum over all of them before it is timed.

namespace {

using namespace bench;

class Sqlite {
 public:
  Sqlite() {
    Require(sqlite3_open(":memory:", &database_) == SQLITE_OK, "sqlite3_open");
    Execute("create table linii(id integer primary key, zi integer, suma integer, pret real, oras text, nume text)");
    Execute("begin");
    insert_ = Prepare("insert into linii values(?,?,?,?,?,?)");
    find_ = Prepare("select suma from linii where id = ?");
  }
  Sqlite(const Sqlite&) = delete;
  Sqlite& operator=(const Sqlite&) = delete;
  ~Sqlite() {
    sqlite3_finalize(insert_);
    sqlite3_finalize(find_);
    sqlite3_close(database_);
  }
  void Add(const Line& line) {
    sqlite3_bind_int(insert_, 1, line.id);
    sqlite3_bind_int(insert_, 2, line.day);
    sqlite3_bind_int64(insert_, 3, line.sum);
    sqlite3_bind_double(insert_, 4, line.price);
    sqlite3_bind_text(insert_, 5, line.town.data(), static_cast<int>(line.town.size()), SQLITE_STATIC);
    sqlite3_bind_text(insert_, 6, line.name.data(), static_cast<int>(line.name.size()), SQLITE_STATIC);
    sqlite3_step(insert_);
    sqlite3_reset(insert_);
  }
  void End() { Execute("commit"); }
  [[nodiscard]] std::int64_t Find(std::int32_t id) const {
    sqlite3_bind_int(find_, 1, id);
    sqlite3_step(find_);
    const std::int64_t sum = sqlite3_column_int64(find_, 0);
    sqlite3_reset(find_);
    return sum;
  }

 private:
  void Execute(const char* sql) { Require(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql); }
  sqlite3_stmt* Prepare(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    Require(sqlite3_prepare_v2(database_, sql, -1, &statement, nullptr) == SQLITE_OK, sql);
    return statement;
  }
  sqlite3* database_ = nullptr;
  sqlite3_stmt* insert_ = nullptr;
  sqlite3_stmt* find_ = nullptr;
};

/// The bytes that containers of the kind have allocated.
template <class Container>
std::size_t Memory() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}
template <>
std::size_t Memory<Sqlite>() {
  return static_cast<std::size_t>(sqlite3_memory_used());
}

template <class Container>
void Load(benchmark::State& state) {
  {
    Container some;
    Fill(some, kSome);
    CheckFinds(some, kSome);
  }
  double bytes = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const std::size_t before = Memory<Container>();
    auto container = std::make_unique<Container>();
    state.ResumeTiming();
    Fill(*container, kRows);
    state.PauseTiming();
    bytes = static_cast<double>(Memory<Container>() - before);
    container.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kRows));
  state.counters["bytes_per_row"] = bytes / static_cast<double>(kRows);
}

template <class Container>
void Find(benchmark::State& state) {
  Container container;
  Fill(container, kRows);
  CheckFinds(container, kSome);
  std::size_t at = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(container.Find(static_cast<std::int32_t>(RandomOrder()[at] * 3)));
    at = at + 1 == kRows ? 0 : at + 1;
  }
}

template <class Container>
void Row(benchmark::State& state) {
  Container container;
  Fill(container, kRows);
  CheckRows(container, kSome);
  std::size_t at = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(container.RowAt(RandomOrder()[at]));
    at = at + 1 == kRows ? 0 : at + 1;
  }
}

[[maybe_unused]] const bool kRegistered = [] {
  const auto slow = [](const char* name, auto* run) {
    benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond);
  };
  slow("Dataset/load_1000000/kiv", &Load<Kiv>);
  slow("Dataset/load_1000000/multi_index", &Load<MultiIndex>);
  slow("Dataset/load_1000000/sqlite", &Load<Sqlite>);
  slow("Dataset/insert_logged_1000000/kiv", &Load<KivLogged>);
  slow("Dataset/insert_logged_1000000/multi_index_without_log", &Load<MultiIndex>);
  benchmark::RegisterBenchmark("Dataset/find_1000000/kiv", &Find<Kiv>);
  benchmark::RegisterBenchmark("Dataset/find_1000000/multi_index", &Find<MultiIndex>);
  benchmark::RegisterBenchmark("Dataset/find_1000000/sqlite", &Find<Sqlite>);
  benchmark::RegisterBenchmark("Dataset/six_fields_of_a_row/kiv", &Row<Kiv>);
  benchmark::RegisterBenchmark("Dataset/six_fields_of_a_row/floor_array_of_structs", &Row<ArrayOfStructs>);
  return true;
}();

}  // namespace
