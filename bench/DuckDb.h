#pragma once

#include <dlfcn.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "bench/Values.h"
#include "kivtools/dataset/ArrowData.h"

namespace bench {

/// The column store that scripts/bench-peers installs, on one thread, by the few functions of its C interface that are
/// called here. Tests ask it too.
class DuckDb {
 public:
  /// Whether it is installed; says on the error output where it is not.
  static bool IsThere() {
    static const bool isThere = [] {
      if (Library() == nullptr) {
        std::fputs("DuckDB is not installed (scripts/bench-peers) and is left out\n", stderr);
      }
      return Library() != nullptr;
    }();
    return isThere;
  }

  DuckDb() {
    Require(Entry<int (*)(const char*, void**)>("duckdb_open")(nullptr, &database_) == 0, "duckdb_open");
    Require(Entry<int (*)(void*, void**)>("duckdb_connect")(database_, &connection_) == 0, "duckdb_connect");
    Run("set threads = 1");
  }
  DuckDb(const DuckDb&) = delete;
  DuckDb& operator=(const DuckDb&) = delete;
  ~DuckDb() {
    Entry<void (*)(void**)>("duckdb_disconnect")(&connection_);
    Entry<void (*)(void**)>("duckdb_close")(&database_);
  }

  void Run(const char* sql) { static_cast<void>(Number(sql)); }

  /// The first value of the first row.
  std::int64_t Number(const char* sql) {
    std::int64_t number = 0;
    Ask(sql, [&](Result& result) { number = value_(&result, 0, 0); });
    return number;
  }
  /// Calls back with the first value of each row.
  template <class Take>
  void ForEachNumber(const char* sql, Take&& take) {
    Ask(sql, [&](Result& result) {
      const std::uint64_t count = count_(&result);
      for (std::uint64_t row = 0; row < count; ++row) {
        take(value_(&result, 0, row));
      }
    });
  }
  /// Makes a table of rows, `valuesOf(row)` as SQL has them. Example: `1,'x'`.
  template <class ValuesOf>
  void Fill(const std::string& table, const std::string& columns, std::size_t rows, ValuesOf&& valuesOf) {
    Run(("create table " + table + "(" + columns + ")").c_str());
    constexpr std::size_t kAtOnce = 10'000;
    for (std::size_t first = 0; first < rows; first += kAtOnce) {
      std::string sql = "insert into " + table + " values ";
      for (std::size_t row = first; row < first + kAtOnce && row < rows; ++row) {
        sql += (row == first ? "(" : ",(") + valuesOf(row) + ")";
      }
      Run(sql.c_str());
    }
  }

  /// The first column, as text.
  std::vector<std::string> Texts(const char* sql) {
    Result result{};
    Require(query_(connection_, sql, &result) == 0, sql);
    std::vector<std::string> texts(Entry<std::uint64_t (*)(Result*)>("duckdb_row_count")(&result));
    const auto text = Entry<char* (*)(Result*, std::uint64_t, std::uint64_t)>("duckdb_value_varchar");
    for (std::size_t row = 0; row < texts.size(); ++row) {
      char* const value = text(&result, 0, row);
      texts[row] = value == nullptr ? "(null)" : value;
      Entry<void (*)(void*)>("duckdb_free")(value);
    }
    destroy_(&result);
    return texts;
  }

  /// Makes a table of the rows of a stream, and releases it.
  void Take(const char* table, ArrowArrayStream& stream) {
    Lent lent{stream};
    Require(stream.get_schema(&stream, &lent.schema) == 0, "get_schema");
    // It gives back no schema that it gets here, so it is lent one.
    ArrowArrayStream lending = {[](ArrowArrayStream* from, ArrowSchema* out) {
                                  *out = static_cast<Lent*>(from->private_data)->schema;
                                  out->release = [](ArrowSchema* back) { back->release = nullptr; };
                                  return 0;
                                },
                                [](ArrowArrayStream* from, ArrowArray* out) {
                                  ArrowArrayStream& to = static_cast<Lent*>(from->private_data)->stream;
                                  return to.get_next(&to, out);
                                },
                                [](ArrowArrayStream*) { return static_cast<const char*>(nullptr); },
                                [](ArrowArrayStream* back) { back->release = nullptr; }, &lent};
    const auto scan = Entry<int (*)(void*, const char*, ArrowArrayStream*)>("duckdb_arrow_scan");
    Require(scan(connection_, "stream", &lending) == 0, "duckdb_arrow_scan");
    // All columns at once: it does not ask for fewer, but believes to get fewer.
    Run((std::string("create table ") + table + " as select * from stream").c_str());
    Run("drop view stream");
    lent.schema.release(&lent.schema);
    stream.release(&stream);
  }

  /// The rows of a query as columns. The stream is done with before the store is.
  ArrowArrayStream Columns(const char* sql) {
    auto query = std::make_unique<ColumnsOfQuery>();
    Require(Entry<int (*)(void*, const char*, void**)>("duckdb_query_arrow")(connection_, sql, &query->result) == 0,
            sql);
    return {[](ArrowArrayStream* stream, ArrowSchema* out) {
              *out = {};
              return Entry<int (*)(void*, ArrowSchema**)>("duckdb_query_arrow_schema")(QueryOf(stream), &out);
            },
            [](ArrowArrayStream* stream, ArrowArray* out) {
              *out = {};
              return Entry<int (*)(void*, ArrowArray**)>("duckdb_query_arrow_array")(QueryOf(stream), &out);
            },
            [](ArrowArrayStream* stream) {
              return Entry<const char* (*)(void*)>("duckdb_query_arrow_error")(QueryOf(stream));
            },
            [](ArrowArrayStream* stream) {
              const std::unique_ptr<ColumnsOfQuery> gone(static_cast<ColumnsOfQuery*>(stream->private_data));
              stream->release = nullptr;
            },
            query.release()};
  }

 private:
  struct Lent {
    ArrowArrayStream& stream;
    ArrowSchema schema{};
  };
  struct ColumnsOfQuery {
    void* result = nullptr;
    ColumnsOfQuery() = default;
    ColumnsOfQuery(const ColumnsOfQuery&) = delete;
    ColumnsOfQuery& operator=(const ColumnsOfQuery&) = delete;
    ~ColumnsOfQuery() { Entry<void (*)(void**)>("duckdb_destroy_arrow")(&result); }
  };
  static void* QueryOf(ArrowArrayStream* stream) { return static_cast<ColumnsOfQuery*>(stream->private_data)->result; }

  /// As the interface has had it from the first: its members are not looked at.
  struct Result {
    std::uint64_t columns, rows, changed;
    void* first;
    char* message;
    void* inner;
  };

  template <class Take>
  void Ask(const char* sql, Take&& take) {
    Result result{};
    Require(query_(connection_, sql, &result) == 0, sql);
    take(result);
    destroy_(&result);
  }

  static void* Library() {
    static void* const library = [] {
      const std::filesystem::path peers = KIV_BENCH_PEERS;
      return dlopen((peers / "node_modules/@duckdb/node-bindings-linux-x64/libduckdb.so").c_str(),
                    RTLD_NOW | RTLD_LOCAL);
    }();
    return library;
  }
  template <class Function>
  static Function Entry(const char* name) {
    void* const found = dlsym(Library(), name);
    Require(found != nullptr, name);
    return reinterpret_cast<Function>(found);
  }

  int (*query_)(void*, const char*, Result*) = Entry<int (*)(void*, const char*, Result*)>("duckdb_query");
  std::int64_t (*value_)(Result*, std::uint64_t, std::uint64_t) =
      Entry<std::int64_t (*)(Result*, std::uint64_t, std::uint64_t)>("duckdb_value_int64");
  std::uint64_t (*count_)(Result*) = Entry<std::uint64_t (*)(Result*)>("duckdb_row_count");
  void (*destroy_)(Result*) = Entry<void (*)(Result*)>("duckdb_destroy_result");
  void* database_ = nullptr;
  void* connection_ = nullptr;
};

}  // namespace bench
