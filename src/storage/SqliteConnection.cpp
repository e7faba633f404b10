#include "storage/SqliteConnection.h"

#include <sqlite3.h>
#include <system_error>

namespace notlet {
namespace {

StoreError::Kind kindOf(int code) {
  switch (code & 0xff) {
  case SQLITE_BUSY:
  case SQLITE_LOCKED:
    return StoreError::Kind::Busy;
  case SQLITE_CORRUPT:
  case SQLITE_NOTADB:
    return StoreError::Kind::Damaged;
  case SQLITE_READONLY:
    return code == SQLITE_READONLY_DBMOVED ? StoreError::Kind::Moved : StoreError::Kind::Other;
  default:
    return StoreError::Kind::Other;
  }
}

} // namespace

void SqliteConnection::Closer::operator()(sqlite3* handle) const {
  sqlite3_close_v2(handle);
}

StoreResult<SqliteConnection> SqliteConnection::open(const std::filesystem::path& file, int flags) {
  sqlite3* handle = nullptr;
  const int code = sqlite3_open_v2(file.c_str(), &handle, flags | SQLITE_OPEN_EXRESCODE, nullptr);
  SqliteConnection connection(handle, file);
  if (code != SQLITE_OK)
    return std::unexpected(connection.lastError());
  return connection;
}

StoreResult<void> SqliteConnection::execute(const char* sql) {
  if (sqlite3_exec(handle(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
    return std::unexpected(lastError());
  return {};
}

void SqliteConnection::setPatience(std::chrono::milliseconds patience) {
  m_patience->limit = patience;
  sqlite3_busy_handler(handle(), &SqliteConnection::waitOnceMore, m_patience.get());
}

/// SQLite's own handler waits longer and longer, and then a program that saves without pause shuts others
/// out.
int SqliteConnection::waitOnceMore(void* patience, int waitsBefore) {
  constexpr int pauseMilliseconds = 1;
  auto& [limit, start] = *static_cast<Patience*>(patience);
  const auto now = std::chrono::steady_clock::now();
  if (waitsBefore == 0)
    start = now;
  if (now - start >= limit)
    return 0;
  sqlite3_sleep(pauseMilliseconds);
  return 1;
}

bool SqliteConnection::isInPlace() const {
  int hasMoved = 0;
  sqlite3_file_control(handle(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved);
  return hasMoved == 0;
}

bool SqliteConnection::isInTransaction() const {
  return sqlite3_get_autocommit(handle()) == 0;
}

StoreError SqliteConnection::error(StoreError::Kind kind, std::string_view complaint) const {
  std::string message = "The notlet store “" + m_file.string() + "” ";
  message.append(complaint).push_back('.');
  return {kind, std::move(message)};
}

StoreError SqliteConnection::lastError() const {
  const int code = sqlite3_extended_errcode(handle());
  const StoreError::Kind kind = kindOf(code);
  switch (kind) {
  case StoreError::Kind::Busy:
    return error(kind, "is in use by another program");
  case StoreError::Kind::Damaged:
    return error(kind, "is damaged: " + std::string(sqlite3_errmsg(handle())));
  case StoreError::Kind::Moved:
    return error(kind, "was moved, replaced or deleted while it was open");
  default:
    break;
  }
  if (code == SQLITE_READONLY_ROLLBACK)
    return error(kind, "holds a save that was cut short, and cannot be put right because it is read-only");
  std::string complaint = "cannot be used: " + std::string(sqlite3_errmsg(handle()));
  if (const int reason = sqlite3_system_errno(handle()); reason != 0)
    complaint += " (" + std::generic_category().message(reason) + ")";
  return error(kind, complaint);
}

void SqliteStatement::Finalizer::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

StoreResult<SqliteStatement> SqliteStatement::prepare(SqliteConnection& connection, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(connection.handle(), sql, -1, &statement, nullptr) != SQLITE_OK)
    return std::unexpected(connection.lastError());
  return SqliteStatement(connection, statement);
}

void SqliteStatement::note(int code) {
  if (m_bindCode == SQLITE_OK)
    m_bindCode = code;
}

void SqliteStatement::bind(int parameter, std::int64_t value) {
  note(sqlite3_bind_int64(m_statement.get(), parameter, value));
}

void SqliteStatement::bindNull(int parameter) {
  note(sqlite3_bind_null(m_statement.get(), parameter));
}

void SqliteStatement::bindText(int parameter, std::string_view text) {
  // A null pointer would be bound as NULL.
  const char* start = text.empty() ? "" : text.data();
  note(sqlite3_bind_text64(m_statement.get(), parameter, start, text.size(), SQLITE_STATIC, SQLITE_UTF8));
}

void SqliteStatement::bindBytes(int parameter, std::string_view bytes) {
  note(sqlite3_bind_blob64(m_statement.get(), parameter, bytes.data(), bytes.size(), SQLITE_STATIC));
}

StoreResult<bool> SqliteStatement::step() {
  if (m_bindCode != SQLITE_OK)
    return std::unexpected(m_connection->error(kindOf(m_bindCode),
                                               "cannot be used: " + std::string(sqlite3_errstr(m_bindCode))));
  const int code = sqlite3_step(m_statement.get());
  if (code == SQLITE_ROW)
    return true;
  if (code == SQLITE_DONE) {
    sqlite3_reset(m_statement.get());
    return false;
  }
  StoreError error = m_connection->lastError();
  sqlite3_reset(m_statement.get());
  return std::unexpected(std::move(error));
}

bool SqliteStatement::isNull(int column) const {
  return sqlite3_column_type(m_statement.get(), column) == SQLITE_NULL;
}

std::int64_t SqliteStatement::integer(int column) const {
  return sqlite3_column_int64(m_statement.get(), column);
}

std::string_view SqliteStatement::text(int column) const {
  const auto* start = reinterpret_cast<const char*>(sqlite3_column_text(m_statement.get(), column));
  return {start, start ? static_cast<std::size_t>(sqlite3_column_bytes(m_statement.get(), column)) : 0};
}

std::string_view SqliteStatement::bytes(int column) const {
  const auto* start = static_cast<const char*>(sqlite3_column_blob(m_statement.get(), column));
  return {start, start ? static_cast<std::size_t>(sqlite3_column_bytes(m_statement.get(), column)) : 0};
}

} // namespace notlet
