#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <string>

#include "bench/DatasetContainers.h"
#include "bench/DuckDb.h"
#include "dataset/query/Selection.h"
#include "kivtools/dataset/Filter.h"

// A million rows are asked for those of one town with large sums, which are few, and for the sum over all rows above a
// limit, which are about half of them. All give the same figures before they are timed.

namespace {

using namespace bench;

constexpr const char* kNarrow = "oras = 'orasul 123' and suma > 9000";
constexpr const char* kWide = "suma > 5000";

struct Figures {
  std::int64_t narrow = 0;
  std::int64_t wide = 0;
};

const Figures& Expected() {
  static const Figures expected = [] {
    Figures figures;
    for (const Line& line : Lines()) {
      figures.narrow += line.town == "orasul 123" && line.sum > 90'000'000 ? 1 : 0;
      figures.wide += line.sum > 50'000'000 ? line.sum : 0;
    }
    return figures;
  }();
  return expected;
}

class KivRows : public Kiv {
 public:
  KivRows() { Fill(*this, kRows); }

  [[nodiscard]] std::int64_t Narrow(const kiv::query::Kernels& kernels) const {
    const kiv::Filter filter(dataset_, kNarrow);
    return static_cast<std::int64_t>(SelectRows(filter.GetTree(), dataset_.GetContents(), kernels).size());
  }
  [[nodiscard]] std::int64_t Wide(const kiv::query::Kernels& kernels) const {
    const kiv::Filter filter(dataset_, kWide);
    return std::get<kiv::Currency>(SumRows(filter.GetTree(), dataset_.GetContents(), sum_.Index(), kernels)).Raw();
  }
};

class SqliteRows {
 public:
  SqliteRows() {
    Require(sqlite3_open(":memory:", &database_) == SQLITE_OK, "sqlite3_open");
    sqlite3_exec(database_, "create table linii(id integer primary key, suma integer, oras text)", nullptr, nullptr,
                 nullptr);
    sqlite3_exec(database_, "begin", nullptr, nullptr, nullptr);
    sqlite3_stmt* const insert = Prepare("insert into linii values(?,?,?)");
    for (const Line& line : Lines()) {
      sqlite3_bind_int(insert, 1, line.id);
      sqlite3_bind_int64(insert, 2, line.sum);
      sqlite3_bind_text(insert, 3, line.town.data(), static_cast<int>(line.town.size()), SQLITE_STATIC);
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    sqlite3_exec(database_, "commit", nullptr, nullptr, nullptr);
    narrow_ = Prepare("select count(*) from linii where oras = 'orasul 123' and suma > 90000000");
    wide_ = Prepare("select sum(suma) from linii where suma > 50000000");
  }
  SqliteRows(const SqliteRows&) = delete;
  SqliteRows& operator=(const SqliteRows&) = delete;
  ~SqliteRows() {
    sqlite3_finalize(narrow_);
    sqlite3_finalize(wide_);
    sqlite3_close(database_);
  }
  [[nodiscard]] std::int64_t Narrow() const { return Number(narrow_); }
  [[nodiscard]] std::int64_t Wide() const { return Number(wide_); }

 private:
  sqlite3_stmt* Prepare(const char* sql) {
    sqlite3_stmt* made = nullptr;
    Require(sqlite3_prepare_v2(database_, sql, -1, &made, nullptr) == SQLITE_OK, sql);
    return made;
  }
  static std::int64_t Number(sqlite3_stmt* statement) {
    sqlite3_step(statement);
    const std::int64_t number = sqlite3_column_int64(statement, 0);
    sqlite3_reset(statement);
    return number;
  }
  sqlite3* database_ = nullptr;
  sqlite3_stmt* narrow_ = nullptr;
  sqlite3_stmt* wide_ = nullptr;
};

class DuckRows {
 public:
  DuckRows() {
    database_.Run("create table linii(id integer, suma bigint, oras varchar)");
    constexpr std::size_t kAtOnce = 10'000;
    for (std::size_t i = 0; i < kRows; i += kAtOnce) {
      std::string sql = "insert into linii values ";
      for (std::size_t at = i; at < i + kAtOnce; ++at) {
        const Line& line = Lines()[at];
        sql +=
            (at == i ? "(" : ",(") + std::to_string(line.id) + "," + std::to_string(line.sum) + ",'" + line.town + "')";
      }
      database_.Run(sql.c_str());
    }
  }
  std::int64_t Narrow() {
    return database_.Number("select count(*) from linii where oras = 'orasul 123' and suma > 90000000");
  }
  std::int64_t Wide() { return database_.Number("select sum(suma)::bigint from linii where suma > 50000000"); }

 private:
  DuckDb database_;
};

template <class Rows>
Rows& One() {
  static Rows rows;
  return rows;
}

template <class Ask>
void Time(benchmark::State& state, std::int64_t expected, Ask ask) {
  Require(ask() == expected, "a filter's figure");
  for (auto _ : state) {
    benchmark::DoNotOptimize(ask());
  }
}

[[maybe_unused]] const bool kRegistered = [] {
  const auto add = [](const std::string& who, auto narrow, auto wide) {
    const auto named = [&](const char* what) { return "DatasetFilter/" + (what + ("_1000000/" + who)); };
    benchmark::RegisterBenchmark(named("narrow").c_str(), [narrow](benchmark::State& state) {
      Time(state, Expected().narrow, narrow);
    })->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark(named("wide_and_sum").c_str(), [wide](benchmark::State& state) {
      Time(state, Expected().wide, wide);
    })->Unit(benchmark::kMicrosecond);
  };
  const auto addKernels = [&](const char* who, const kiv::query::Kernels* kernels) {
    if (kernels != nullptr) {
      add(
          who, [kernels] { return One<KivRows>().Narrow(*kernels); },
          [kernels] { return One<KivRows>().Wide(*kernels); });
    }
  };
  addKernels("kiv", &kiv::query::BestKernels());
  addKernels("kiv_sse2", kiv::query::Sse2Kernels());
  add(
      "sqlite", [] { return One<SqliteRows>().Narrow(); }, [] { return One<SqliteRows>().Wide(); });
  if (DuckDb::IsThere()) {
    add(
        "duckdb", [] { return One<DuckRows>().Narrow(); }, [] { return One<DuckRows>().Wide(); });
  }
  return true;
}();

}  // namespace
