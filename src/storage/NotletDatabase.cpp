#include "storage/NotletDatabase.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <limits>
#include <sqlite3.h>

#include "storage/RowFilterSql.h"

namespace notlet {
namespace {

using Kind = StoreError::Kind;

constexpr std::chrono::milliseconds savePatience{250};

#define NOTLET_COLUMNS "id, content, createdAt, updatedAt, hashtags, keywords"

std::string_view bytesOf(const Uuid& id) {
  return {reinterpret_cast<const char*>(id.bytes.data()), id.bytes.size()};
}

std::int64_t microseconds(Timestamp time) {
  return time.time_since_epoch().count();
}
Timestamp timestamp(std::int64_t microseconds) {
  return Timestamp(std::chrono::microseconds(microseconds));
}

void bindEntry(SqliteStatement& statement, const NotletEntry& entry) {
  statement.bindBytes(1, bytesOf(entry.id));
  statement.bindText(2, entry.content);
  statement.bind(3, microseconds(entry.createdAt));
  if (entry.updatedAt)
    statement.bind(4, microseconds(*entry.updatedAt));
  else
    statement.bindNull(4);
  statement.bindText(5, entry.hashtags.packed());
  statement.bindText(6, entry.keywords.packed());
}

// The readers of rows give nothing for one that cannot be what it should.

std::optional<Uuid> readId(const SqliteStatement& statement) {
  const std::string_view bytes = statement.bytes(0);
  Uuid id;
  if (bytes.size() != id.bytes.size())
    return std::nullopt;
  std::memcpy(id.bytes.data(), bytes.data(), bytes.size());
  return id;
}

std::optional<NotletEntry> readWithoutKeywords(const SqliteStatement& statement) {
  const std::optional<Uuid> id = readId(statement);
  if (!id)
    return std::nullopt;
  NotletEntry entry;
  entry.id = *id;
  entry.content = statement.text(1);
  entry.createdAt = timestamp(statement.integer(2));
  if (!statement.isNull(3))
    entry.updatedAt = timestamp(statement.integer(3));
  entry.hashtags = WordList::fromPacked(statement.text(4));
  return entry;
}

std::optional<NotletEntry> readEntry(const SqliteStatement& statement) {
  std::optional<NotletEntry> entry = readWithoutKeywords(statement);
  if (entry)
    entry->keywords = WordList::fromPacked(statement.text(5));
  return entry;
}

/// A string for all keywords, freed again at once, would leave a hole in memory beside each notlet.
std::optional<NotletEntry> readWithKeywordsBeyondText(const SqliteStatement& statement) {
  std::optional<NotletEntry> entry = readWithoutKeywords(statement);
  if (entry)
    entry->keywords = keywordsBeyondText(statement.text(1), {statement.text(5)});
  return entry;
}

using EntryReader = std::optional<NotletEntry> (*)(const SqliteStatement&);

EntryReader readerOf(ListedKeywords keywords) {
  return keywords == ListedKeywords::All ? readEntry : readWithKeywordsBeyondText;
}

template<ListedKeywords keywords>
std::optional<StoredNotlet> readStored(const SqliteStatement& statement) {
  std::optional<NotletEntry> entry = readerOf(keywords)(statement);
  if (!entry)
    return std::nullopt;
  return StoredNotlet{statement.integer(6), std::move(*entry)};
}

std::optional<ListPosition> readPosition(const SqliteStatement& statement) {
  const std::optional<Uuid> id = readId(statement);
  if (!id)
    return std::nullopt;
  return ListPosition{timestamp(statement.integer(1)), *id};
}

std::optional<std::int64_t> readInteger(const SqliteStatement& statement) {
  return statement.integer(0);
}

} // namespace

StoreResult<std::int64_t> NotletDatabase::apply(const ChangeSet& changes) {
  if (m_access == Access::ReadOnly)
    return std::unexpected(m_connection.error(Kind::Other, "was opened for reading only"));
  if (m_isDamaged)
    return std::unexpected(m_connection.error(Kind::Damaged, "is damaged and is not written any more"));
  if (!isInPlace())
    return std::unexpected(
        m_connection.error(Kind::Moved, "was moved, replaced or deleted while it was open"));

  m_connection.setPatience(savePatience);
  bool commitWasTried = false;
  StoreResult<std::int64_t> written = write(changes, commitWasTried);
  if (!written && commitWasTried && written.error().kind != Kind::Busy) {
    // A commit can fail after the point of no return. What is in the store then was not certainly synced, and
    // writing the same rows once more makes it so.
    const StoreResult<bool> isStored = holds(changes);
    if (isStored && *isStored)
      written = write(changes, commitWasTried);
  }
  m_connection.setPatience(m_readPatience);
  if (!written)
    noticed(written.error());
  return written;
}

StoreResult<std::int64_t> NotletDatabase::write(const ChangeSet& changes, bool& commitWasTried) {
  if (StoreResult<void> begun = m_connection.execute("BEGIN IMMEDIATE"); !begun)
    return std::unexpected(begun.error());
  StoreResult<std::int64_t> revisionBefore = lastRevision();
  StoreResult<void> written = revisionBefore ? writeRows(changes) : std::unexpected(revisionBefore.error());
  if (written) {
    commitWasTried = true;
    written = m_connection.execute("COMMIT");
  }
  if (written)
    return revisionBefore;
  // Most failures have ended the transaction already. One that cannot be ended leaves its journal behind,
  // which the next access plays back.
  if (m_connection.isInTransaction())
    std::ignore = m_connection.execute("ROLLBACK");
  return std::unexpected(written.error());
}

StoreResult<void> NotletDatabase::writeRows(const ChangeSet& changes) {
  StoreResult<SqliteStatement> upsert = SqliteStatement::prepare(
      m_connection, "INSERT OR REPLACE INTO NotletEntry (" NOTLET_COLUMNS ") VALUES (?, ?, ?, ?, ?, ?)");
  StoreResult<SqliteStatement> deletion =
      SqliteStatement::prepare(m_connection, "DELETE FROM NotletEntry WHERE id = ?");
  if (!upsert || !deletion)
    return std::unexpected(upsert ? deletion.error() : upsert.error());
  for (const NotletEntry* entry : changes.upserts) {
    bindEntry(*upsert, *entry);
    if (StoreResult<bool> done = upsert->step(); !done)
      return std::unexpected(done.error());
  }
  for (const Uuid& id : changes.deletions) {
    deletion->bindBytes(1, bytesOf(id));
    if (StoreResult<bool> done = deletion->step(); !done)
      return std::unexpected(done.error());
  }
  return {};
}

/// Whether the store is as the changes want it.
StoreResult<bool> NotletDatabase::holds(const ChangeSet& changes) {
  for (const NotletEntry* entry : changes.upserts) {
    const StoreResult<std::optional<NotletEntry>> stored = find(entry->id);
    if (!stored)
      return std::unexpected(stored.error());
    if (*stored != *entry)
      return false;
  }
  for (const Uuid& id : changes.deletions) {
    const StoreResult<std::optional<NotletEntry>> stored = find(id);
    if (!stored)
      return std::unexpected(stored.error());
    if (stored->has_value())
      return false;
  }
  return true;
}

template<typename Row>
StoreResult<std::vector<Row>> NotletDatabase::rows(const char* sql,
                                                   const std::function<void(SqliteStatement&)>& bind,
                                                   std::optional<Row> (*read)(const SqliteStatement&),
                                                   std::chrono::steady_clock::time_point deadline) {
  StoreResult<SqliteStatement> statement = SqliteStatement::prepare(m_connection, sql);
  if (!statement)
    return std::unexpected(noticed(statement.error()));
  if (bind)
    bind(*statement);
  std::vector<Row> found;
  for (;;) {
    const StoreResult<bool> row = statement->step();
    if (!row)
      return std::unexpected(noticed(row.error()));
    if (!*row)
      return found;
    std::optional<Row> value = read(*statement);
    if (!value)
      return std::unexpected(
          noticed(m_connection.error(Kind::Damaged, "is damaged: it holds a row that is not a notlet")));
    found.push_back(std::move(*value));
    // Asking for the time is cheap, yet not as cheap as a row.
    if (found.size() % 16 == 0 && std::chrono::steady_clock::now() >= deadline)
      return found;
  }
}

template<typename Row>
StoreResult<std::vector<Row>> NotletDatabase::page(const char* columns, std::size_t limit,
                                                   std::optional<ListPosition> after,
                                                   std::optional<Row> (*read)(const SqliteStatement&),
                                                   std::chrono::steady_clock::time_point deadline) {
  const std::string sql = std::string("SELECT ") + columns + " FROM NotletEntry" +
                          (after ? " WHERE (createdAt, id) < (?2, ?3)" : "") +
                          " ORDER BY createdAt DESC, id DESC LIMIT ?1";
  const auto bind = [&](SqliteStatement& statement) {
    statement.bind(1, static_cast<std::int64_t>(limit));
    if (after) {
      statement.bind(2, microseconds(after->createdAt));
      statement.bindBytes(3, bytesOf(after->id));
    }
  };
  return rows<Row>(sql.c_str(), bind, read, deadline);
}

StoreResult<std::vector<NotletEntry>> NotletDatabase::newest(std::size_t limit,
                                                             std::optional<ListPosition> after,
                                                             std::chrono::steady_clock::time_point deadline) {
  return page<NotletEntry>(NOTLET_COLUMNS, limit, after, readerOf(m_listedKeywords), deadline);
}

StoreResult<std::optional<std::int64_t>>
NotletDatabase::scan(std::int64_t revision, RowFilter& filter,
                     const std::function<void(const NotletEntry&)>& visit) {
  // They are read in some ten milliseconds, for which a program that saves can wait.
  constexpr std::int64_t rowsAtOnce = 50'000;
  const RowFilterSql functions(m_connection, filter);
  if (StoreResult<void> ready = functions.status(); !ready)
    return std::unexpected(ready.error());
  const StoreResult<std::vector<std::int64_t>> next = rows<std::int64_t>(
      "SELECT revision FROM NotletEntry WHERE revision > ? ORDER BY revision LIMIT 1",
      [&](SqliteStatement& statement) { statement.bind(1, revision); }, readInteger);
  if (!next)
    return std::unexpected(next.error());
  if (next->empty())
    return std::nullopt;
  constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
  const std::int64_t last = std::min(next->front(), largest - rowsAtOnce) + rowsAtOnce;
  const std::string sql = "SELECT " NOTLET_COLUMNS
                          " FROM NotletEntry WHERE revision > ?1 AND revision <= ?2" +
                          functions.condition() + " ORDER BY revision";
  StoreResult<SqliteStatement> statement = SqliteStatement::prepare(m_connection, sql.c_str());
  if (!statement)
    return std::unexpected(noticed(statement.error()));
  statement->bind(1, revision);
  statement->bind(2, last);
  for (;;) {
    const StoreResult<bool> row = statement->step();
    if (!row)
      return std::unexpected(noticed(row.error()));
    if (!*row)
      return last;
    std::optional<NotletEntry> entry = readEntry(*statement);
    if (!entry)
      return std::unexpected(
          noticed(m_connection.error(Kind::Damaged, "is damaged: it holds a row that is not a notlet")));
    visit(*entry);
  }
}

StoreResult<std::vector<ListPosition>> NotletDatabase::positions(std::size_t limit,
                                                                 std::optional<ListPosition> after) {
  return page<ListPosition>("id, createdAt", limit, after, readPosition,
                            std::chrono::steady_clock::time_point::max());
}

StoreResult<std::optional<NotletEntry>> NotletDatabase::find(const Uuid& id) {
  StoreResult<std::vector<NotletEntry>> found = rows<NotletEntry>(
      "SELECT " NOTLET_COLUMNS " FROM NotletEntry WHERE id = ?",
      [&](SqliteStatement& statement) { statement.bindBytes(1, bytesOf(id)); }, readEntry);
  if (!found)
    return std::unexpected(found.error());
  if (found->empty())
    return std::nullopt;
  return std::move(found->front());
}

StoreResult<std::vector<StoredNotlet>> NotletDatabase::changedSince(std::int64_t revision,
                                                                    std::size_t limit) {
  const auto bind = [&](SqliteStatement& statement) {
    statement.bind(1, revision);
    statement.bind(2, static_cast<std::int64_t>(limit));
  };
  return rows<StoredNotlet>("SELECT " NOTLET_COLUMNS ", revision FROM NotletEntry WHERE revision > ? "
                            "ORDER BY revision LIMIT ?",
                            bind,
                            m_listedKeywords == ListedKeywords::All ? readStored<ListedKeywords::All>
                                                                    : readStored<ListedKeywords::BeyondText>);
}

StoreResult<std::vector<Uuid>> NotletDatabase::allIds() {
  return rows<Uuid>("SELECT id FROM NotletEntry ORDER BY id", nullptr, readId);
}

StoreResult<std::vector<Uuid>> NotletDatabase::idsBeginningWith(std::string_view prefix) {
  std::string digits;
  std::ranges::copy_if(prefix, std::back_inserter(digits), [](char character) { return character != '-'; });
  constexpr std::size_t digitCount = 32;
  const auto isDigit = [](char character) {
    return std::isxdigit(static_cast<unsigned char>(character)) != 0;
  };
  if (digits.size() > digitCount || !std::ranges::all_of(digits, isDigit))
    return std::vector<Uuid>();
  const auto filledWith = [&](char filler) {
    std::string text = digits + std::string(digitCount - digits.size(), filler);
    for (const std::size_t hyphen : {8U, 13U, 18U, 23U})
      text.insert(hyphen, 1, '-');
    return Uuid::parse(text).value_or(Uuid());
  };
  const Uuid first = filledWith('0');
  const Uuid last = filledWith('f');
  const auto bind = [&](SqliteStatement& statement) {
    statement.bindBytes(1, bytesOf(first));
    statement.bindBytes(2, bytesOf(last));
  };
  return rows<Uuid>("SELECT id FROM NotletEntry WHERE id BETWEEN ? AND ? ORDER BY id", bind, readId);
}

StoreResult<std::int64_t> NotletDatabase::readNumber(const char* sql) {
  const StoreResult<std::vector<std::int64_t>> found = rows<std::int64_t>(sql, nullptr, readInteger);
  if (!found)
    return std::unexpected(found.error());
  return found->empty() ? 0 : found->front();
}

StoreResult<std::size_t> NotletDatabase::readSize(const char* sql) {
  const StoreResult<std::int64_t> number = readNumber(sql);
  if (!number)
    return std::unexpected(number.error());
  return static_cast<std::size_t>(std::max<std::int64_t>(0, *number));
}

StoreResult<std::size_t> NotletDatabase::count() {
  return readSize("SELECT count(*) FROM NotletEntry");
}

StoreResult<std::size_t> NotletDatabase::estimatedCount() {
  // No row takes less than some sixty bytes, and each had a revision of its own.
  return readSize("SELECT min(coalesce((SELECT seq FROM sqlite_sequence WHERE name = 'NotletEntry'), 0), "
                  "page_count * page_size / 60) FROM pragma_page_count, pragma_page_size");
}

StoreResult<std::int64_t> NotletDatabase::lastRevision() {
  return readNumber("SELECT seq FROM sqlite_sequence WHERE name = 'NotletEntry'");
}

StoreResult<std::int64_t> NotletDatabase::dataVersion() {
  return readNumber("PRAGMA data_version");
}

StoreError NotletDatabase::noticed(StoreError error) {
  m_isDamaged = m_isDamaged || error.kind == Kind::Damaged;
  return error;
}

void NotletDatabase::setReadPatience(std::chrono::milliseconds patience) {
  m_readPatience = patience;
  m_connection.setPatience(patience);
}

} // namespace notlet
