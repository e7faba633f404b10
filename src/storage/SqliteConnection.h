#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "storage/StoreError.h"

struct sqlite3;
struct sqlite3_stmt;

namespace notlet {

/// A database file opened by SQLite, with messages that name the file.
class SqliteConnection {
 public:
  /// Opens without reading or writing anything yet. An in-memory database has the path ":memory:".
  [[nodiscard]] static StoreResult<SqliteConnection> open(const std::filesystem::path& file, int flags);

  [[nodiscard]] sqlite3* handle() const { return m_handle.get(); }
  [[nodiscard]] const std::filesystem::path& file() const { return m_file; }

  /// Runs statements that give no rows.
  [[nodiscard]] StoreResult<void> execute(const char* sql);
  /// How long a statement waits for another program's lock.
  void setPatience(std::chrono::milliseconds patience);
  /// True unless the file was moved, replaced or deleted since it was opened.
  [[nodiscard]] bool isInPlace() const;
  [[nodiscard]] bool isInTransaction() const;

  /// What SQLite complained about last, with the kind that its code stands for.
  [[nodiscard]] StoreError lastError() const;
  [[nodiscard]] StoreError error(StoreError::Kind kind, std::string_view complaint) const;

 private:
  struct Closer {
    void operator()(sqlite3* handle) const;
  };

  struct Patience {
    std::chrono::milliseconds limit{0};
    std::chrono::steady_clock::time_point start;
  };

  SqliteConnection(sqlite3* handle, std::filesystem::path file) : m_handle(handle), m_file(std::move(file)) {}
  static int waitOnceMore(void* patience, int waitsBefore);

  std::unique_ptr<Patience> m_patience = std::make_unique<Patience>();
  std::unique_ptr<sqlite3, Closer> m_handle;
  std::filesystem::path m_file;
};

/// A prepared statement. A value that could not be bound is reported by the next step().
class SqliteStatement {
 public:
  [[nodiscard]] static StoreResult<SqliteStatement> prepare(SqliteConnection& connection, const char* sql);

  /// Parameters are counted from 1. Bound text and bytes must live until the statement was stepped.
  void bind(int parameter, std::int64_t value);
  void bindNull(int parameter);
  void bindText(int parameter, std::string_view text);
  void bindBytes(int parameter, std::string_view bytes);

  /// True when there is a row to read; the statement is ready for new values once there is none.
  [[nodiscard]] StoreResult<bool> step();

  /// Columns are counted from 0; views are valid until the next step.
  [[nodiscard]] bool isNull(int column) const;
  [[nodiscard]] std::int64_t integer(int column) const;
  [[nodiscard]] std::string_view text(int column) const;
  [[nodiscard]] std::string_view bytes(int column) const;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const;
  };

  SqliteStatement(SqliteConnection& connection, sqlite3_stmt* statement)
      : m_connection(&connection), m_statement(statement) {}
  void note(int code);

  SqliteConnection* m_connection;
  std::unique_ptr<sqlite3_stmt, Finalizer> m_statement;
  int m_bindCode = 0;
};

} // namespace notlet
