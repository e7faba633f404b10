#pragma once

#include <QObject>
#include <QTimer>
#include <cstddef>
#include <optional>
#include <vector>

#include "archive/ArchiveFilter.h"
#include "archive/ArchiveIndex.h"

namespace notlet {

/// The notlets of the archive that a filter admits, in list order, following every change of the list.
///
/// The newest are found at once, the others in short slices on the event loop. Without a filter the results
/// are the live list itself.
class ArchiveResults : public QObject {
  Q_OBJECT

 public:
  /// The index must outlive the results.
  explicit ArchiveResults(ArchiveIndex& index, QObject* parent = nullptr);

  [[nodiscard]] std::size_t size() const;
  [[nodiscard]] const NotletEntry& at(std::size_t position) const;
  [[nodiscard]] std::optional<std::size_t> positionOf(const Uuid& id) const;
  /// Whether there may be results that are not found yet.
  [[nodiscard]] bool isSearching() const;

  /// Drops the search under way and begins another; nothing happens when the filter is the same.
  void setFilter(ArchiveFilter filter);
  /// Begins to prepare the index even while there is no filter.
  void prepare();
  /// Goes on with the search until it is done or the time has passed.
  void advance(std::chrono::microseconds time);

 Q_SIGNALS:
  /// Indexes are positions in the results. Reset: another filter; Appended: more was found.
  void changed(const notlet::ListChange& change);
  /// The list is loaded and has been searched to its end, maybe without finding anything more.
  void finished();

 private:
  using Deadline = ArchiveIndex::Deadline;
  using Gone = std::vector<const NotletEntry*>;

  [[nodiscard]] bool isFiltering() const { return !m_filter.admitsEverything(); }
  [[nodiscard]] bool hasUnsearched() const;
  [[nodiscard]] bool hasWork() const;
  void work();
  void finishIfDone();
  void scheduleWork();
  [[nodiscard]] std::size_t search(Deadline deadline);
  [[nodiscard]] ModelContext& list() const { return m_index.modelContext(); }

  void follow(const ListChange& change, const Gone& gone);
  void followFiltered(const ListChange& change, const Gone& gone);
  void takeInserted(std::size_t first, std::size_t count);
  void takeRemoved(const ListChange& change, const Gone& gone);
  void takeUpdated(std::size_t index);
  [[nodiscard]] std::size_t placeOf(const NotletEntry& notlet) const;

  ArchiveIndex& m_index;
  ArchiveFilter m_filter;
  bool m_isPreparing = false;
  std::vector<const NotletEntry*> m_found;
  // How many notlets of the list, from the newest on, have been held against the filter.
  std::size_t m_searched = 0;
  QTimer m_workTimer;
};

} // namespace notlet
