#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sqlite3.h>

#include <algorithm>
#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/member.hpp>
#include <boost/multi_index_container.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "bench/DatasetLines.h"
#include "bench/Values.h"
#include "kivtools/dataset/Dataset.h"
#include "kivtools/dataset/Loader.h"

// A million rows of six fields: number, day, amount, double, one of 1,000 towns, a name. What is compared holds the
// same rows; each container is asked for the sum over all of them before it is timed.

namespace {

using bench::Line;
using bench::Lines;

constexpr std::size_t kRows = bench::kMostLines;
constexpr std::size_t kSome = 10'000;

/// The order in which rows are asked for, which no predictor learns.
const std::vector<std::uint32_t>& RandomOrder() {
  static const std::vector<std::uint32_t> order = [] {
    std::vector<std::uint32_t> places(kRows);
    for (std::uint32_t i = 0; i < kRows; ++i) {
      places[i] = i;
    }
    std::ranges::shuffle(places, std::mt19937(2));
    return places;
  }();
  return order;
}

std::uint64_t Digest(std::int64_t id, std::int64_t day, std::int64_t sum, double price, std::string_view town,
                     std::string_view name) {
  return static_cast<std::uint64_t>(id) * 31 + static_cast<std::uint64_t>(day) * 17 + static_cast<std::uint64_t>(sum) +
         static_cast<std::uint64_t>(price * 8) + static_cast<std::uint64_t>(town.back()) * town.size() +
         static_cast<std::uint64_t>(name[10]) * name.size();
}

std::size_t AllocatedBytes() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

/// What every container offers: Add(line) and End(), Sum() over the first `count` keys asked for one by one.
class Kiv {
 public:
  void Add(const Line& line) {
    loader_->Add(
        {line.id, kiv::DateTime(line.day), kiv::Currency::FromRaw(line.sum), line.price, line.town, line.name});
  }
  void End() {
    loader_->Finish();
    loader_.reset();
  }
  [[nodiscard]] std::int64_t Find(std::int32_t id) const {
    return dataset_.GetCurrency(*dataset_.Find(id), sum_).Raw();
  }
  [[nodiscard]] std::uint64_t RowAt(std::uint32_t place) const {
    const kiv::RowId row{place};
    return Digest(dataset_.GetInt64(row, id_), static_cast<std::int64_t>(dataset_.GetDateTime(row, day_).Days()),
                  dataset_.GetCurrency(row, sum_).Raw(), dataset_.GetDouble(row, price_), dataset_.GetText(row, town_),
                  dataset_.GetText(row, name_));
  }
  static std::size_t Memory() { return AllocatedBytes(); }

 protected:
  kiv::Dataset dataset_{"linii",
                        {{"id", kiv::FieldType::Int32, kiv::kKey},
                         {"zi", kiv::FieldType::Date},
                         {"suma", kiv::FieldType::Currency},
                         {"pret", kiv::FieldType::Double},
                         {"oras", kiv::FieldType::Text, 40},
                         {"nume", kiv::FieldType::Text, 40}}};
  kiv::FieldRef id_ = dataset_.Field("id");
  kiv::FieldRef day_ = dataset_.Field("zi");
  kiv::FieldRef sum_ = dataset_.Field("suma");
  kiv::FieldRef price_ = dataset_.Field("pret");
  kiv::FieldRef town_ = dataset_.Field("oras");
  kiv::FieldRef name_ = dataset_.Field("nume");

 private:
  std::optional<kiv::Loader> loader_{dataset_};
};

/// Every row a post of its own, in the log.
class KivLogged : public Kiv {
 public:
  KivLogged() { Kiv::End(); }
  void Add(const Line& line) {
    dataset_.Insert({{id_, line.id},
                     {day_, kiv::DateTime(line.day)},
                     {sum_, kiv::Currency::FromRaw(line.sum)},
                     {price_, line.price},
                     {town_, line.town},
                     {name_, line.name}});
  }
  void End() {}
};

class MultiIndex {
 public:
  void Add(const Line& line) { lines_.insert(line); }
  void End() {}
  [[nodiscard]] std::int64_t Find(std::int32_t id) const { return lines_.find(id)->sum; }
  static std::size_t Memory() { return AllocatedBytes(); }

 private:
  boost::multi_index_container<Line, boost::multi_index::indexed_by<boost::multi_index::hashed_unique<
                                         boost::multi_index::member<Line, std::int32_t, &Line::id>>>>
      lines_;
};

class ArrayOfStructs {
 public:
  void Add(const Line& line) { lines_.push_back(line); }
  void End() {}
  [[nodiscard]] std::uint64_t RowAt(std::uint32_t place) const {
    const Line& line = lines_[place];
    return Digest(line.id, line.day, line.sum, line.price, line.town, line.name);
  }
  static std::size_t Memory() { return AllocatedBytes(); }

 private:
  std::vector<Line> lines_;
};

class Sqlite {
 public:
  Sqlite() {
    bench::Require(sqlite3_open(":memory:", &database_) == SQLITE_OK, "sqlite3_open");
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
  static std::size_t Memory() { return static_cast<std::size_t>(sqlite3_memory_used()); }

 private:
  void Execute(const char* sql) {
    bench::Require(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql);
  }
  sqlite3_stmt* Prepare(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    bench::Require(sqlite3_prepare_v2(database_, sql, -1, &statement, nullptr) == SQLITE_OK, sql);
    return statement;
  }
  sqlite3* database_ = nullptr;
  sqlite3_stmt* insert_ = nullptr;
  sqlite3_stmt* find_ = nullptr;
};

template <class Container>
void Fill(Container& container, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    container.Add(Lines()[i]);
  }
  container.End();
}

template <class Container>
void CheckFinds(const Container& container, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    bench::Require(container.Find(Lines()[i].id) == Lines()[i].sum, "find in a dataset");
  }
}

template <class Container>
void CheckRows(const Container& container, std::size_t count) {
  for (std::uint32_t i = 0; i < count; ++i) {
    const Line& line = Lines()[i];
    bench::Require(container.RowAt(i) == Digest(line.id, line.day, line.sum, line.price, line.town, line.name),
                   "row of a dataset");
  }
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
    const std::size_t before = Container::Memory();
    auto container = std::make_unique<Container>();
    state.ResumeTiming();
    Fill(*container, kRows);
    state.PauseTiming();
    bytes = static_cast<double>(Container::Memory() - before);
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
