#pragma once

#include <dlfcn.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "bench/Values.h"

namespace bench {

/// The column store that scripts/bench-peers installs, on one thread, by the few functions of its C interface that are
/// called here.
class DuckDb {
 public:
  /// Whether it is installed; says on the error output where it is not.
  static bool IsThere() {
    static const bool isThere = [] {
      if (Library() == nullptr) {
        std::fputs("DuckDB is not installed (scripts/bench-peers); its rows are left out\n", stderr);
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
    Result result{};
    Require(query_(connection_, sql, &result) == 0, sql);
    const std::int64_t number = value_(&result, 0, 0);
    destroy_(&result);
    return number;
  }

 private:
  /// As the interface has had it from the first: its members are not looked at.
  struct Result {
    std::uint64_t columns, rows, changed;
    void* first;
    char* message;
    void* inner;
  };

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
  void (*destroy_)(Result*) = Entry<void (*)(Result*)>("duckdb_destroy_result");
  void* database_ = nullptr;
  void* connection_ = nullptr;
};

}  // namespace bench
