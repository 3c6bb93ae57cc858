#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <sqlite3.h>

#include "Utilities/Result.h"

namespace ledgeon::sql {

// A prepared statement; reset and rebound for each use. Thread of its connection only.
class Statement final {
 public:
  Statement() = default;
  Statement(sqlite3* db, std::string_view text);
  ~Statement();
  Statement(Statement&& other) noexcept;
  Statement& operator=(Statement&& other) noexcept;
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  bool valid() const { return statement_ != nullptr; }
  void reset();
  void bindNull(int index);
  void bind(int index, int64_t value);
  void bind(int index, double value);
  void bind(int index, std::string_view text);
  void bindBlob(int index, const void* data, size_t size);

  // Steps once: true when a row is ready; throws std::runtime_error on an SQL error.
  bool step();
  // Steps to the end, for statements that return no rows.
  void run();

  int columnType(int column) const;
  bool isNull(int column) const { return columnType(column) == SQLITE_NULL; }
  int64_t integer(int column) const;
  double real(int column) const;
  std::string_view text(int column) const;
  int columnCount() const;
  std::string_view columnName(int column) const;

 private:
  sqlite3* db_ = nullptr;
  sqlite3_stmt* statement_ = nullptr;
};

// One SQLite connection, closed at the end of its life.
class Connection final {
 public:
  Connection() = default;
  ~Connection();
  Connection(Connection&& other) noexcept;
  Connection& operator=(Connection&& other) noexcept;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Opens `path` with the SQLITE_OPEN_* `flags`, with the decimal functions registered.
  static Result<Connection> open(const std::string& path, int flags);

  sqlite3* handle() const { return db_; }
  // Runs statements that return no rows; throws std::runtime_error on an SQL error.
  void exec(std::string_view sqlText);
  Statement prepare(std::string_view sqlText) { return Statement(db_, sqlText); }
  std::string lastError() const;
  void close();

 private:
  sqlite3* db_ = nullptr;
};

// Quotes an SQL identifier: "name".
std::string quoted(std::string_view identifier);

// Begins a transaction and rolls it back unless committed. Nested uses join the outer one.
class TransactionGuard final {
 public:
  explicit TransactionGuard(Connection& connection);
  ~TransactionGuard();
  TransactionGuard(const TransactionGuard&) = delete;
  TransactionGuard& operator=(const TransactionGuard&) = delete;
  void commit();

 private:
  Connection& connection_;
  bool done_ = false;
};

}  // namespace ledgeon::sql
