#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "bench/DatasetContainers.h"
#include "bench/DuckDb.h"
#include "bench/SqliteLines.h"
#include "dataset/query/Evaluator.h"
#include "dataset/query/Selection.h"
#include "kivtools/dataset/Aggregate.h"
#include "kivtools/dataset/Cursor.h"
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
  std::int64_t towns = 0;  // the greatest sum of a town
};

const Figures& Expected() {
  static const Figures expected = [] {
    Figures figures;
    std::map<std::string_view, std::int64_t> sums;
    for (const Line& line : Lines()) {
      figures.towns = std::max(figures.towns, sums[line.town] += line.sum);
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
  /// Asks an aggregate that is new.
  [[nodiscard]] std::int64_t Towns() { return GreatestOf(kiv::Aggregate(dataset_, "sum(suma)", "oras")); }
  /// Asks one that is there after an edit that concerns it.
  [[nodiscard]] std::int64_t TownsAfterEdit() {
    static const kiv::Aggregate followed(dataset_, "sum(suma)", "oras");
    dataset_.Set(kiv::RowId{0}, sum_, kiv::Currency());
    dataset_.Changes().UndoLast();
    return GreatestOf(followed);
  }
  /// A cursor over the few rows that pass.
  [[nodiscard]] std::int64_t NarrowCursor() {
    kiv::Cursor cursor(dataset_);
    cursor.Filter(kNarrow);
    return static_cast<std::int64_t>(cursor.Count());
  }
  /// The same where there is an order by town.
  [[nodiscard]] std::int64_t NarrowCursorWithIndex() {
    static const std::unique_ptr<kiv::Cursor> byTown = [this] {
      auto made = std::make_unique<kiv::Cursor>(dataset_);
      made->OrderBy("oras");
      return made;
    }();
    return NarrowCursor();
  }
  /// The same by testing row after row.
  [[nodiscard]] std::int64_t NarrowByRows() {
    const kiv::Filter filter(dataset_, kNarrow);
    kiv::query::Evaluator evaluator(filter.GetTree());
    std::int64_t passing = 0;
    for (std::uint32_t row = 0; row < kRows; ++row) {
      const kiv::store::Cell& truth = evaluator.Evaluate(filter.GetTree().Root(), dataset_.GetContents(), row);
      passing += !truth.isNull && truth.bits != 0 ? 1 : 0;
    }
    return passing;
  }

 private:
  static std::int64_t GreatestOf(const kiv::Aggregate& aggregate) {
    std::int64_t greatest = 0;
    for (const kiv::AggregateGroup& group : aggregate.Groups()) {
      greatest = std::max(greatest, std::get<kiv::Currency>(group.value).Raw());
    }
    return greatest;
  }
};

/// Three columns, so that it reads no more than it needs to.
class SqliteRows {
 public:
  [[nodiscard]] std::int64_t Narrow() const { return NumberOf(narrow_); }
  [[nodiscard]] std::int64_t Wide() const { return NumberOf(wide_); }
  [[nodiscard]] std::int64_t Towns() const { return NumberOf(towns_); }

 private:
  static SqliteDatabase WithRows() {
    SqliteDatabase database = OpenSqlite();
    Execute(database, "create table linii(id integer primary key, suma integer, oras text)");
    Execute(database, "begin");
    const SqliteStatement insert = Prepare(database, "insert into linii values(?,?,?)");
    for (const Line& line : Lines()) {
      sqlite3_bind_int(insert.get(), 1, line.id);
      sqlite3_bind_int64(insert.get(), 2, line.sum);
      BindText(insert, 3, line.town);
      Run(insert);
    }
    Execute(database, "commit");
    return database;
  }
  SqliteDatabase database_ = WithRows();
  SqliteStatement narrow_ =
      Prepare(database_, "select count(*) from linii where oras = 'orasul 123' and suma > 90000000");
  SqliteStatement wide_ = Prepare(database_, "select sum(suma) from linii where suma > 50000000");
  SqliteStatement towns_ = Prepare(database_, "select max(s) from (select sum(suma) s from linii group by oras)");
};

class DuckRows {
 public:
  DuckRows() {
    database_.Fill("linii", "id integer, suma bigint, oras varchar", kRows, [](std::size_t row) {
      const Line& line = Lines()[row];
      return std::to_string(line.id) + "," + std::to_string(line.sum) + ",'" + line.town + "'";
    });
  }
  std::int64_t Narrow() {
    return database_.Number("select count(*) from linii where oras = 'orasul 123' and suma > 90000000");
  }
  std::int64_t Wide() { return database_.Number("select sum(suma)::bigint from linii where suma > 50000000"); }
  std::int64_t Towns() {
    return database_.Number("select max(s)::bigint from (select sum(suma) s from linii group by oras)");
  }

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
  const auto addOne = [](const char* name, const std::int64_t Figures::*figure, auto ask) {
    benchmark::RegisterBenchmark(name, [figure, ask](benchmark::State& state) {
      Time(state, Expected().*figure, ask);
    })->Unit(benchmark::kMicrosecond);
  };
  addKernels("kiv", &kiv::query::BestKernels());
  addKernels("kiv_sse2", kiv::query::Sse2Kernels());
  add(
      "sqlite", [] { return One<SqliteRows>().Narrow(); }, [] { return One<SqliteRows>().Wide(); });
  if (DuckDb::IsThere()) {
    add(
        "duckdb", [] { return One<DuckRows>().Narrow(); }, [] { return One<DuckRows>().Wide(); });
    addOne("DatasetFilter/sum_by_town_1000000/duckdb", &Figures::towns, [] { return One<DuckRows>().Towns(); });
  }
  addOne("DatasetFilter/sum_by_town_1000000/kiv", &Figures::towns, [] { return One<KivRows>().Towns(); });
  addOne("DatasetFilter/sum_by_town_1000000/sqlite", &Figures::towns, [] { return One<SqliteRows>().Towns(); });
  addOne("DatasetFilter/sum_by_town_after_an_edit_of_1000000/kiv", &Figures::towns,
         [] { return One<KivRows>().TownsAfterEdit(); });
  addOne("DatasetFilter/sum_by_town_after_an_edit_of_1000000/sqlite_anew", &Figures::towns,
         [] { return One<SqliteRows>().Towns(); });
  addOne("DatasetFilter/narrow_cursor_1000000/kiv", &Figures::narrow, [] { return One<KivRows>().NarrowCursor(); });
  addOne("DatasetFilter/narrow_cursor_1000000/row_by_row", &Figures::narrow,
         [] { return One<KivRows>().NarrowByRows(); });
  addOne("DatasetFilter/narrow_cursor_with_index_1000000/kiv", &Figures::narrow,
         [] { return One<KivRows>().NarrowCursorWithIndex(); });
  addOne("DatasetFilter/narrow_cursor_with_index_1000000/row_by_row", &Figures::narrow,
         [] { return One<KivRows>().NarrowByRows(); });
  return true;
}();

}  // namespace
