// Making a store, and looking at one before it is trusted.

#include <sqlite3.h>

#include "platform/DurableFile.h"
#include "storage/NotletDatabase.h"
#include "storage/StoreFile.h"

namespace notlet {
namespace {

using Kind = StoreError::Kind;

/// Small stores are checked as a whole on opening, which takes a few milliseconds at most.
constexpr std::int64_t fullyCheckedSize = 1 << 20;

// A row that is written again gets a new revision, which is how another process finds what has changed.
constexpr const char* tableSql = "CREATE TABLE NotletEntry ("
                                 "revision INTEGER PRIMARY KEY AUTOINCREMENT, "
                                 "id BLOB NOT NULL UNIQUE CHECK (length(id) = 16), "
                                 "content TEXT NOT NULL, "
                                 "createdAt INTEGER NOT NULL, "
                                 "updatedAt INTEGER, "
                                 "hashtags TEXT NOT NULL, "
                                 "keywords TEXT NOT NULL) STRICT";
constexpr const char* indexSql = "CREATE INDEX NotletEntryByCreation ON NotletEntry (createdAt, id)";

/// The bytes of a store without notlets.
StoreResult<std::string> emptyStore() {
  StoreResult<SqliteConnection> memory =
      SqliteConnection::open(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  if (!memory)
    return std::unexpected(memory.error());
  const std::string sql = "PRAGMA application_id=" + std::to_string(storeApplicationId) +
                          "; PRAGMA user_version=" + std::to_string(storeFormat) + "; BEGIN; " + tableSql +
                          "; " + indexSql + "; COMMIT";
  if (StoreResult<void> made = memory->execute(sql.c_str()); !made)
    return std::unexpected(made.error());
  sqlite3_int64 size = 0;
  const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> bytes(
      sqlite3_serialize(memory->handle(), "main", &size, 0), &sqlite3_free);
  if (!bytes)
    return std::unexpected(memory->lastError());
  return std::string(reinterpret_cast<const char*>(bytes.get()), static_cast<std::size_t>(size));
}

/// Several processes may do this at once: one of them creates the file, all open it.
StoreResult<void> createStore(const std::filesystem::path& file) {
  const StoreResult<std::string> contents = emptyStore();
  if (!contents)
    return std::unexpected(contents.error());
  std::error_code ignored;
  if (const std::filesystem::path folder = file.parent_path();
      !folder.empty() && !std::filesystem::exists(folder, ignored)) {
    if (Result<void> made = makePrivateDirectory(folder); !made)
      return std::unexpected(StoreError(Kind::Unreachable, made.error().message));
  }
  if (Result<bool> created = createDurably(file, *contents); !created)
    return std::unexpected(StoreError(Kind::Unreachable, created.error().message));
  return {};
}

} // namespace

StoreResult<std::unique_ptr<NotletDatabase>> NotletDatabase::open(const std::filesystem::path& file,
                                                                  Access access, const OpeningTerms& terms) {
  StoreResult<bool> exists = storeFileExists(file, access);
  if (exists && !*exists && access == Access::ReadWrite && terms.createsMissing) {
    if (StoreResult<void> created = createStore(file); !created)
      return std::unexpected(created.error());
    exists = storeFileExists(file, access);
  }
  if (!exists)
    return std::unexpected(exists.error());
  if (!*exists)
    return std::unexpected(
        StoreError(Kind::Missing, "The notlet store “" + file.string() + "” does not exist yet."));

  // For reading, too: a save that was cut short has to be undone before its neighbours can be read. What may
  // not be written is opened read-only by itself.
  StoreResult<SqliteConnection> connection = SqliteConnection::open(file, SQLITE_OPEN_READWRITE);
  if (!connection)
    return std::unexpected(connection.error());
  if (StoreResult<void> header = checkStoreHeader(*connection); !header)
    return std::unexpected(header.error());
  connection->setPatience(terms.patience);
  std::unique_ptr<NotletDatabase> database(new NotletDatabase(std::move(*connection), access));
  for (const auto check : {&NotletDatabase::prepareConnection, &NotletDatabase::checkSchema,
                           &NotletDatabase::checkSize, &NotletDatabase::checkContents}) {
    if (StoreResult<void> passed = (database.get()->*check)(); !passed)
      return std::unexpected(passed.error());
  }
  if (access == Access::ReadOnly) {
    if (StoreResult<void> closed = database->m_connection.execute("PRAGMA query_only=ON"); !closed)
      return std::unexpected(closed.error());
  }
  database->setReadPatience(database->m_readPatience);
  return database;
}

StoreResult<void> NotletDatabase::prepareConnection() {
  sqlite3* handle = m_connection.handle();
  if (m_access == Access::ReadWrite && sqlite3_db_readonly(handle, "main") != 0)
    return std::unexpected(m_connection.error(Kind::Other, "is read-only"));
  if (m_access == Access::ReadWrite) {
    if (StoreResult<void> made = makeStorePrivate(file()); !made)
      return made;
  }
  for (const auto& [option, value] :
       {std::pair{SQLITE_DBCONFIG_DEFENSIVE, 1}, std::pair{SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
        std::pair{SQLITE_DBCONFIG_ENABLE_TRIGGER, 0}, std::pair{SQLITE_DBCONFIG_ENABLE_VIEW, 0}}) {
    if (sqlite3_db_config(handle, option, value, nullptr) != SQLITE_OK)
      return std::unexpected(m_connection.lastError());
  }
  return m_connection.execute(
      "PRAGMA cell_size_check=ON; PRAGMA journal_mode=TRUNCATE; PRAGMA synchronous=FULL");
}

StoreResult<void> NotletDatabase::checkSchema() {
  StoreResult<SqliteStatement> statement =
      SqliteStatement::prepare(m_connection, "SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL "
                                             "AND name <> 'sqlite_sequence' ORDER BY type DESC, name");
  if (!statement)
    return std::unexpected(statement.error());
  std::vector<std::string> found;
  for (;;) {
    const StoreResult<bool> row = statement->step();
    if (!row)
      return std::unexpected(row.error());
    if (!*row)
      break;
    found.emplace_back(statement->text(0));
  }
  if (found != std::vector<std::string>{tableSql, indexSql})
    return std::unexpected(
        m_connection.error(Kind::Damaged, "is damaged: its tables are not those of notlets"));
  return {};
}

StoreResult<void> NotletDatabase::checkSize() {
  const StoreResult<std::int64_t> size = storeFileSize(m_connection);
  if (!size)
    return std::unexpected(size.error());
  const StoreResult<std::int64_t> expected =
      readNumber("SELECT page_count * page_size FROM pragma_page_count, pragma_page_size");
  if (!expected)
    return std::unexpected(expected.error());
  // Another process may have made the file longer between the two looks at it, never shorter.
  const StoreResult<std::int64_t> sizeAfterwards = storeFileSize(m_connection);
  if (*expected > *size && (!sizeAfterwards || *expected > *sizeAfterwards))
    return std::unexpected(m_connection.error(Kind::Damaged, "is damaged: its end is missing"));
  return {};
}

StoreResult<void> NotletDatabase::checkContents() {
  if (const StoreResult<std::int64_t> size = storeFileSize(m_connection); !size || *size > fullyCheckedSize)
    return {};
  const StoreResult<std::string> complaint = complaintOf("PRAGMA integrity_check(1)");
  if (!complaint)
    return std::unexpected(complaint.error());
  return complaint->empty() ? StoreResult<void>() : mendIndexes(*complaint);
}

/// A notlet that an index leaves out is missing in the lists, but it is still in the table.
StoreResult<void> NotletDatabase::mendIndexes(const std::string& complaint) {
  const std::unexpected damaged(m_connection.error(Kind::Damaged, "is damaged: " + complaint));
  const StoreResult<std::string> complaintOfTable = complaintOf("PRAGMA quick_check(1)");
  // With more in an index than in the table, it is the table that has lost something.
  const StoreResult<std::int64_t> lost =
      readNumber("SELECT max((SELECT count(createdAt) FROM NotletEntry INDEXED BY NotletEntryByCreation), "
                 "(SELECT count(id) FROM NotletEntry INDEXED BY sqlite_autoindex_NotletEntry_1)) - (SELECT "
                 "count(*) FROM NotletEntry NOT INDEXED)");
  if (!complaintOfTable || !complaintOfTable->empty() || !lost || *lost > 0)
    return damaged;
  if (StoreResult<void> mended = m_connection.execute("REINDEX"); !mended)
    return mended.error().kind == Kind::Busy ? mended : damaged;
  const StoreResult<std::string> complaintAfterwards = complaintOf("PRAGMA integrity_check(1)");
  if (!complaintAfterwards || !complaintAfterwards->empty())
    return damaged;
  return {};
}

/// What a check of SQLite's finds first; empty when all is well.
StoreResult<std::string> NotletDatabase::complaintOf(const char* check) {
  StoreResult<SqliteStatement> statement = SqliteStatement::prepare(m_connection, check);
  if (!statement)
    return std::unexpected(statement.error());
  const StoreResult<bool> row = statement->step();
  if (!row)
    return std::unexpected(row.error());
  if (!*row)
    return "it cannot be checked";
  return statement->text(0) == "ok" ? "" : std::string(statement->text(0));
}

} // namespace notlet
