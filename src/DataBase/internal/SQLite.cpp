#include "DataBase/internal/SQLite.h"

#include <stdexcept>
#include <utility>

#include "DataBase/internal/SQLFunctions.h"
#include "Utilities/Error.h"

namespace ledgeon::sql {

Statement::Statement(sqlite3* db, std::string_view text) : db_(db) {
  if (sqlite3_prepare_v3(db, text.data(), static_cast<int>(text.size()), SQLITE_PREPARE_PERSISTENT,
                         &statement_, nullptr) != SQLITE_OK) {
    throw std::runtime_error(std::string(sqlite3_errmsg(db)) + " in: " + std::string(text));
  }
}

Statement::~Statement() { sqlite3_finalize(statement_); }

Statement::Statement(Statement&& other) noexcept
    : db_(other.db_), statement_(std::exchange(other.statement_, nullptr)) {}

Statement& Statement::operator=(Statement&& other) noexcept {
  if (this != &other) {
    sqlite3_finalize(statement_);
    db_ = other.db_;
    statement_ = std::exchange(other.statement_, nullptr);
  }
  return *this;
}

void Statement::reset() {
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
}

void Statement::bindNull(int index) { sqlite3_bind_null(statement_, index); }
void Statement::bind(int index, int64_t value) { sqlite3_bind_int64(statement_, index, value); }
void Statement::bind(int index, double value) { sqlite3_bind_double(statement_, index, value); }
void Statement::bind(int index, std::string_view text) {
  sqlite3_bind_text(statement_, index, text.data(), static_cast<int>(text.size()),
                    SQLITE_TRANSIENT);
}
void Statement::bindBlob(int index, const void* data, size_t size) {
  sqlite3_bind_blob(statement_, index, data, static_cast<int>(size), SQLITE_TRANSIENT);
}

bool Statement::step() {
  const int rc = sqlite3_step(statement_);
  if (rc == SQLITE_ROW) return true;
  if (rc == SQLITE_DONE) return false;
  const std::string message = sqlite3_errmsg(db_);
  sqlite3_reset(statement_);
  throw std::runtime_error(message);
}

void Statement::run() {
  while (step()) {
  }
  sqlite3_reset(statement_);
}

int Statement::columnType(int column) const { return sqlite3_column_type(statement_, column); }
int64_t Statement::integer(int column) const { return sqlite3_column_int64(statement_, column); }
double Statement::real(int column) const { return sqlite3_column_double(statement_, column); }
std::string_view Statement::text(int column) const {
  const auto* data = sqlite3_column_text(statement_, column);
  if (!data) return {};
  return {reinterpret_cast<const char*>(data),
          static_cast<size_t>(sqlite3_column_bytes(statement_, column))};
}
int Statement::columnCount() const { return sqlite3_column_count(statement_); }
std::string_view Statement::columnName(int column) const {
  return sqlite3_column_name(statement_, column);
}

Connection::~Connection() { close(); }

Connection::Connection(Connection&& other) noexcept : db_(std::exchange(other.db_, nullptr)) {}

Connection& Connection::operator=(Connection&& other) noexcept {
  if (this != &other) {
    close();
    db_ = std::exchange(other.db_, nullptr);
  }
  return *this;
}

Result<Connection> Connection::open(const std::string& path, int flags) {
  Connection connection;
  const int rc =
      sqlite3_open_v2(path.c_str(), &connection.db_, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  if (rc != SQLITE_OK) {
    const std::string message =
        connection.db_ ? sqlite3_errmsg(connection.db_) : sqlite3_errstr(rc);
    return Error::make(kLErrorDomain, rc, path + ": cannot open the ledger store: " + message);
  }
  sqlite3_busy_timeout(connection.db_, 10000);
  registerLedgerFunctions(connection.db_);
  return connection;
}

void Connection::exec(std::string_view sqlText) {
  char* message = nullptr;
  if (sqlite3_exec(db_, std::string(sqlText).c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
    const std::string text = message ? message : "unknown error";
    sqlite3_free(message);
    throw std::runtime_error(text);
  }
}

std::string Connection::lastError() const { return db_ ? sqlite3_errmsg(db_) : "not open"; }

void Connection::close() {
  if (db_) sqlite3_close_v2(std::exchange(db_, nullptr));
}

std::string quoted(std::string_view identifier) {
  std::string text = "\"";
  for (const char c : identifier) {
    text += c;
    if (c == '"') text += '"';
  }
  return text + "\"";
}

TransactionGuard::TransactionGuard(Connection& connection) : connection_(connection) {
  connection_.exec("SAVEPOINT ledgeon_transaction");
}

TransactionGuard::~TransactionGuard() {
  if (done_) return;
  try {
    connection_.exec("ROLLBACK TO ledgeon_transaction; RELEASE ledgeon_transaction");
  } catch (const std::exception&) {
    // The connection is unusable; closing it discards the transaction anyway.
  }
}

void TransactionGuard::commit() {
  connection_.exec("RELEASE ledgeon_transaction");
  done_ = true;
}

}  // namespace ledgeon::sql
