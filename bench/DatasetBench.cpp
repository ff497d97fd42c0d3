#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdint>
#include <memory>

#include "bench/DatasetContainers.h"
#include "bench/SqliteLines.h"

// A million rows of six fields: number, day, amount, double, one of 1,000 towns, a name. What is compared holds the
// same rows; each container is asked for the sum over all of them before it is timed.

namespace {

using namespace bench;

class Sqlite : public SqliteLines {
 public:
  [[nodiscard]] std::int64_t Find(std::int32_t id) const {
    sqlite3_bind_int(find_.get(), 1, id);
    return NumberOf(find_);
  }

 private:
  SqliteStatement find_ = Prepare(Database(), "select suma from linii where id = ?");
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
