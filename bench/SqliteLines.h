#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string_view>

#include "bench/DatasetLines.h"
#include "bench/Values.h"

/// The lines in a database in memory. Statements are declared behind their database, so that they end before it.
namespace bench {

using SqliteDatabase = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;
using SqliteStatement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

inline SqliteDatabase OpenSqlite() {
  sqlite3* database = nullptr;
  Require(sqlite3_open(":memory:", &database) == SQLITE_OK, "sqlite3_open");
  return {database, &sqlite3_close};
}

inline void Execute(const SqliteDatabase& database, const char* sql) {
  Require(sqlite3_exec(database.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql);
}

inline SqliteStatement Prepare(const SqliteDatabase& database, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  Require(sqlite3_prepare_v2(database.get(), sql, -1, &statement, nullptr) == SQLITE_OK, sql);
  return {statement, &sqlite3_finalize};
}

inline void BindText(const SqliteStatement& statement, int place, std::string_view text) {
  sqlite3_bind_text(statement.get(), place, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

/// Runs a statement that gives no rows, such as an insertion.
inline void Run(const SqliteStatement& statement) {
  Require(sqlite3_step(statement.get()) == SQLITE_DONE, sqlite3_sql(statement.get()));
  sqlite3_reset(statement.get());
}

/// The first value of the first row.
inline std::int64_t NumberOf(const SqliteStatement& statement) {
  sqlite3_step(statement.get());
  const std::int64_t number = sqlite3_column_int64(statement.get(), 0);
  sqlite3_reset(statement.get());
  return number;
}

/// A table of all six columns, filled as the other containers are: Add() for each line, then End().
class SqliteLines {
 public:
  SqliteLines() { Execute(database_, "begin"); }
  void Add(const Line& line) {
    sqlite3_bind_int(insert_.get(), 1, line.id);
    sqlite3_bind_int(insert_.get(), 2, line.day);
    sqlite3_bind_int64(insert_.get(), 3, line.sum);
    sqlite3_bind_double(insert_.get(), 4, line.price);
    BindText(insert_, 5, line.town);
    BindText(insert_, 6, line.name);
    Run(insert_);
  }
  void End() { Execute(database_, "commit"); }
  [[nodiscard]] const SqliteDatabase& Database() const { return database_; }

 private:
  static SqliteDatabase WithTable() {
    SqliteDatabase database = OpenSqlite();
    Execute(database,
            "create table linii(id integer primary key, zi integer, suma integer, pret real, oras text, nume text)");
    return database;
  }
  SqliteDatabase database_ = WithTable();
  SqliteStatement insert_ = Prepare(database_, "insert into linii values(?,?,?,?,?,?)");
};

}  // namespace bench
