#pragma once

#include <QObject>
#include <QTimer>
#include <memory>
#include <optional>
#include <unordered_map>

#include "core/Error.h"
#include "core/HashtagTallies.h"
#include "storage/NotletDatabase.h"
#include "storage/NotletList.h"
#include "storage/StoreWatch.h"

namespace notlet {

/// A change of the live list that has just happened to `count` neighbours from index `first` on. The index of
/// removed ones is that before the removal. Appended ones were in the store and are known now.
struct ListChange {
  enum class Kind { Inserted, Removed, Updated, Appended, Reset };

  Kind kind = Kind::Reset;
  std::size_t first = 0;
  std::size_t count = 0;

  bool operator==(const ListChange&) const = default;
};

/// The live list of all notlets, newest first, with the changes that are not saved yet.
///
/// The newest notlets are there at once; the others follow in short slices while the event loop runs. What
/// another process writes appears by itself. Where both have changed a notlet, the unsaved change stands.
///
/// Of its keywords a notlet in the list carries only those beyond its text: the others are a fifth of what
/// the list takes, and nobody asks it for them. Saving stores all, found anew.
///
/// A store that cannot be opened yet is opened as soon as it can be, and one that was replaced is opened
/// anew: the list becomes what it holds. One that is gone is not made again.
class ModelContext : public QObject {
  Q_OBJECT

 public:
  explicit ModelContext(std::unique_ptr<NotletDatabase> database, QObject* parent = nullptr);
  /// Opens the store itself; with write access a missing one is created.
  ModelContext(const std::filesystem::path& file, Access access, QObject* parent = nullptr);

  [[nodiscard]] std::size_t size() const { return m_list.size(); }
  /// Index 0 is the newest. The notlet stays at its address until it is removed.
  [[nodiscard]] const NotletEntry& at(std::size_t index) const { return m_list.at(index); }
  [[nodiscard]] const NotletEntry* find(const Uuid& id) const { return m_list.find(id); }
  [[nodiscard]] std::optional<std::size_t> indexOf(const Uuid& id) const { return m_list.indexOf(id); }
  /// Whether all notlets of the store have been loaded.
  [[nodiscard]] bool isComplete() const { return m_isComplete; }
  /// The hashtags of the notlets in the list.
  [[nodiscard]] const HashtagTallies& tallies() const { return m_tallies; }
  [[nodiscard]] bool hasUnsavedChanges() const { return !m_stored.empty(); }
  /// Whether the store has been opened. Until then the list is empty and nothing can be saved.
  [[nodiscard]] bool isOpen() const { return m_database != nullptr; }
  /// Why the last try to open what is at the store's place failed, until one succeeds.
  [[nodiscard]] const std::optional<StoreError>& obstacle() const { return m_obstacle; }
  /// Why the store cannot be read any further, if that is so; not what may pass.
  [[nodiscard]] const std::optional<StoreError>& failure() const { return m_failure; }

  /// While paused, only the newest notlets are there: the rest does not compete with what is to be shown
  /// first.
  void setLoadingPaused(bool paused);

  /// Adds a notlet, or replaces the one with its identifier.
  void insert(NotletEntry entry);
  /// Gives the notlet with this identifier its new fields; nothing happens when there is none.
  void replace(NotletEntry entry);
  void remove(const Uuid& id);

  /// Stores all unsaved changes, or none and says why; they then stay unsaved, and a later try does not store
  /// anything twice.
  [[nodiscard]] Result<void> save();
  /// Gives up all unsaved changes.
  void rollback();

 Q_SIGNALS:
  /// The store has been opened, after the first try failed.
  void hasOpened();
  void listChanged(const notlet::ListChange& change);
  /// The list is complete from now on.
  void loadingFinished();
  /// The store cannot be read any further. What is in the list stays, but may not be all there is.
  void storeFailed(const QString& message);

 private:
  ModelContext(const std::filesystem::path& file, Access access, std::unique_ptr<NotletDatabase>&& database,
               QObject* parent);

  StoreResult<void> openStore(std::chrono::milliseconds patience);
  void readAnew();
  StoreResult<void> beginLoading();
  void loadSlice();
  void finishLoading();
  void followStore();
  StoreResult<void> followChanges();
  StoreResult<void> followDeletions();
  StoreResult<void> compareUnsaved();
  StoreResult<void> compareSlice();
  void handle(const StoreError& error, QTimer& retry);
  void fail(const StoreError& error);

  [[nodiscard]] std::vector<NotletEntry> changedEntries() const;
  void rememberStored(const Uuid& id);
  void forgetUnchanged(const Uuid& id);
  [[nodiscard]] std::size_t storedCount() const;
  void adopt(std::vector<NotletEntry> newestFirst, ListChange::Kind kindAtEnd);
  void place(NotletEntry entry);
  void assign(NotletEntry entry);
  void drop(const Uuid& id);

  static constexpr std::chrono::milliseconds busyPause{100};

  std::filesystem::path m_file;
  Access m_access;
  // None until the store could be opened.
  std::unique_ptr<NotletDatabase> m_database;
  std::optional<StoreError> m_obstacle;
  NotletList m_list;
  HashtagTallies m_tallies;
  // What the store holds in place of each notlet with an unsaved change; nothing for a new one.
  std::unordered_map<Uuid, std::optional<NotletEntry>> m_stored;

  std::optional<ListPosition> m_loadedUpTo;
  bool m_hasBegun = false;
  bool m_isLoadingPaused = false;
  bool m_isComplete = false;
  std::int64_t m_seenRevision = 0;
  std::optional<std::int64_t> m_seenVersion;
  // The search for what is in the list and no longer in the store.
  struct Comparison {
    bool isUnderWay = false;
    std::size_t missing = 0;
    std::optional<ListPosition> comparedUpTo;
  };
  bool m_mayMissDeletions = false;
  Comparison m_comparison;
  std::optional<StoreError> m_failure;

  StoreWatch m_watch;
  QTimer m_loadTimer;
  QTimer m_followTimer;
};

} // namespace notlet
