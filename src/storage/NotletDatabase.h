#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "core/NotletEntry.h"
#include "storage/RowFilter.h"
#include "storage/SqliteConnection.h"
#include "storage/StoreError.h"

namespace notlet {

/// Whether the store may be written.
enum class Access { ReadOnly, ReadWrite };

/// Which of their keywords the notlets of a list are read with.
enum class ListedKeywords { All, BeyondText };

/// What is asked of an opening beside its access.
struct OpeningTerms {
  /// With write access a missing file is created (0600) together with its folder (0700).
  bool createsMissing = true;
  /// How long each step waits while another program writes.
  std::chrono::milliseconds patience{250};
};

/// What one save writes. The entries must live until it is done.
struct ChangeSet {
  std::vector<const NotletEntry*> upserts;
  std::vector<Uuid> deletions;
};

/// A notlet's place in the list that is sorted newest first.
struct ListPosition {
  Timestamp createdAt{};
  Uuid id;
};

/// A notlet with the number of the write that stored it; numbers only grow and none is used twice.
struct StoredNotlet {
  std::int64_t revision = 0;
  NotletEntry entry;
};

/// The store file: one row for each notlet. All SQL of the program is here.
///
/// A file that is not a healthy store of ours is refused and never written. What an ended process left half
/// done is undone, and an index that does not agree with its table is made anew, on reading too. A damage met
/// later is reported as such, and nothing is written from then on. The class is free of Qt and belongs to one
/// thread.
class NotletDatabase {
 public:
  [[nodiscard]] static StoreResult<std::unique_ptr<NotletDatabase>>
  open(const std::filesystem::path& file, Access access, const OpeningTerms& terms = {});

  [[nodiscard]] const std::filesystem::path& file() const { return m_connection.file(); }
  [[nodiscard]] Access access() const { return m_access; }
  /// True unless the file was moved, replaced or deleted since it was opened.
  [[nodiscard]] bool isInPlace() const { return m_connection.isInPlace(); }

  /// Stores all changes or none and gives the revision before the first of them: nobody else wrote in between
  /// when that is the last one known. An entry is known by its id, so a repeated one is stored once.
  [[nodiscard]] StoreResult<std::int64_t> apply(const ChangeSet& changes);

  /// Up to `limit` notlets, newest first, from the one that follows `after` in the list. Stops early, but not
  /// before the first, once `deadline` has passed.
  [[nodiscard]] StoreResult<std::vector<NotletEntry>>
  newest(std::size_t limit, std::optional<ListPosition> after = {},
         std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::time_point::max());
  /// Hands out what the filter admits among some thousand rows that were written after `revision`, in the
  /// order of their writing, each before the filter looks at another; gives the revision to go on after, or
  /// nothing when there were no more rows. Other programs can write between two calls.
  [[nodiscard]] StoreResult<std::optional<std::int64_t>>
  scan(std::int64_t revision, RowFilter& filter, const std::function<void(const NotletEntry&)>& visit);
  /// The places of up to `limit` notlets in the same order, read without their contents.
  [[nodiscard]] StoreResult<std::vector<ListPosition>> positions(std::size_t limit,
                                                                 std::optional<ListPosition> after = {});
  [[nodiscard]] StoreResult<std::optional<NotletEntry>> find(const Uuid& id);
  /// In ascending order. The prefix is that of an identifier's text form; hyphens and letter case are free.
  [[nodiscard]] StoreResult<std::vector<Uuid>> idsBeginningWith(std::string_view prefix);
  /// In ascending order.
  [[nodiscard]] StoreResult<std::vector<Uuid>> allIds();
  [[nodiscard]] StoreResult<std::size_t> count();

  /// Up to `limit` notlets that were written after `revision`, in the order of their writing. Deleted ones do
  /// not appear; count() and allIds() tell them.
  [[nodiscard]] StoreResult<std::vector<StoredNotlet>> changedSince(std::int64_t revision, std::size_t limit);
  [[nodiscard]] StoreResult<std::int64_t> lastRevision();
  /// A number that differs from an earlier one when another connection has written in between.
  [[nodiscard]] StoreResult<std::int64_t> dataVersion();
  /// An upper bound for count() that costs nothing.
  [[nodiscard]] StoreResult<std::size_t> estimatedCount();

  /// For newest() and changedSince(); at first they read all.
  void setListedKeywords(ListedKeywords keywords) { m_listedKeywords = keywords; }
  /// How long reading waits while another program writes; at first as long as saving does.
  void setReadPatience(std::chrono::milliseconds patience);

 private:
  explicit NotletDatabase(SqliteConnection connection, Access access)
      : m_connection(std::move(connection)), m_access(access) {}

  StoreResult<void> prepareConnection();
  StoreResult<void> checkSchema();
  StoreResult<void> checkSize();
  StoreResult<void> checkContents();
  StoreResult<void> mendIndexes(const std::string& complaint);
  StoreResult<std::string> complaintOf(const char* check);
  StoreResult<std::int64_t> write(const ChangeSet& changes, bool& commitWasTried);
  StoreResult<void> writeRows(const ChangeSet& changes);
  StoreResult<bool> holds(const ChangeSet& changes);
  template<typename Row>
  StoreResult<std::vector<Row>>
  page(const char* columns, std::size_t limit, std::optional<ListPosition> after,
       std::optional<Row> (*read)(const SqliteStatement&), std::chrono::steady_clock::time_point deadline);
  StoreResult<std::int64_t> readNumber(const char* sql);
  StoreResult<std::size_t> readSize(const char* sql);
  template<typename Row>
  StoreResult<std::vector<Row>>
  rows(const char* sql, const std::function<void(SqliteStatement&)>& bind,
       std::optional<Row> (*read)(const SqliteStatement&),
       std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::time_point::max());
  /// Remembers a damage that reading met.
  StoreError noticed(StoreError error);

  SqliteConnection m_connection;
  Access m_access;
  ListedKeywords m_listedKeywords = ListedKeywords::All;
  std::chrono::milliseconds m_readPatience{250};
  bool m_isDamaged = false;
};

} // namespace notlet
