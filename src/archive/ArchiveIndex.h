#pragma once

#include <QObject>
#include <chrono>
#include <cstddef>
#include <deque>
#include <span>
#include <vector>

#include "archive/ArchiveFilter.h"
#include "core/FoldedArchive.h"
#include "storage/ModelContext.h"

namespace notlet {

/// The live list in the form that is fast to search, kept up to date from then on.
///
/// It covers the newest notlets of the list, as many as extend() has taken in so far. It lives beside the
/// model context, so that it is made once and not at each visit to the archive.
class ArchiveIndex : public QObject {
  Q_OBJECT

 public:
  using Deadline = std::chrono::steady_clock::time_point;

  /// The context must outlive the index.
  explicit ArchiveIndex(ModelContext& modelContext, QObject* parent = nullptr);

  [[nodiscard]] ModelContext& modelContext() const { return m_modelContext; }
  /// How many notlets, from the newest on, are covered.
  [[nodiscard]] std::size_t size() const { return m_slots.size(); }
  /// Whether the whole list is covered.
  [[nodiscard]] bool isComplete() const { return size() == m_modelContext.size(); }
  /// Takes in more of the list until the deadline, at least one notlet if there is one.
  void extend(Deadline deadline);

  /// The notlets at the covered list indexes [first, last) that the filter admits, in list order.
  [[nodiscard]] std::vector<const NotletEntry*> collect(const ArchiveFilter& filter, std::size_t first,
                                                        std::size_t last) const;
  /// Whether the filter admits the notlet at a covered list index.
  [[nodiscard]] bool matches(std::size_t index, const ArchiveFilter& filter) const;

 Q_SIGNALS:
  /// The list has changed and the index agrees. `gone` holds the addresses of the covered notlets among those
  /// removed, which must not be followed any more.
  void listChanged(const notlet::ListChange& change, const std::vector<const notlet::NotletEntry*>& gone);

 private:
  using Slot = FoldedArchive::Slot;
  using Gone = std::vector<const NotletEntry*>;

  void follow(const ListChange& change);
  void insert(std::size_t first, std::size_t count);
  [[nodiscard]] Gone remove(std::size_t first, std::size_t count);
  [[nodiscard]] Slot add(const NotletEntry& notlet);
  /// Looks at nothing that changes while the index is searched: several threads may call it at once.
  [[nodiscard]] std::vector<const NotletEntry*> collectPart(const ArchiveFilter& filter, std::size_t first,
                                                            std::size_t last) const;
  [[nodiscard]] std::size_t endOfRun(std::size_t first, std::size_t last) const;

  ModelContext& m_modelContext;
  FoldedArchive m_archive;
  // By slot; null where the notlet was removed.
  std::vector<const NotletEntry*> m_entries;
  // By list index. Mostly ascending, since slots are given out while the list is read; a notlet that came
  // later stands out of order.
  std::deque<Slot> m_slots;
};

} // namespace notlet
