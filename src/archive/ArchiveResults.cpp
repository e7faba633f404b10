#include "archive/ArchiveResults.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace notlet {

namespace {

using namespace std::chrono_literals;

/// What a key press may wait for its first results, and any other event for a slice of the rest.
constexpr auto firstSlice = 5ms;
constexpr auto laterSlice = 4ms;
/// The first looks are short, because they also fold what they search; later ones give several threads work
/// for a millisecond.
constexpr std::size_t firstLook = 4096;
constexpr std::size_t longestLook = 32768;

ArchiveIndex::Deadline after(std::chrono::microseconds time) {
  return std::chrono::steady_clock::now() + time;
}

} // namespace

ArchiveResults::ArchiveResults(ArchiveIndex& index, QObject* parent) : QObject(parent), m_index(index) {
  m_workTimer.setSingleShot(true);
  connect(&m_workTimer, &QTimer::timeout, this, &ArchiveResults::work);
  connect(&m_index, &ArchiveIndex::listChanged, this, &ArchiveResults::follow);
  connect(&list(), &ModelContext::loadingFinished, this, &ArchiveResults::finishIfDone);
  connect(&list(), &ModelContext::storeFailed, this, &ArchiveResults::finishIfDone);
}

std::size_t ArchiveResults::size() const {
  return isFiltering() ? m_found.size() : list().size();
}

const NotletEntry& ArchiveResults::at(std::size_t position) const {
  return isFiltering() ? *m_found[position] : list().at(position);
}

std::optional<std::size_t> ArchiveResults::positionOf(const Uuid& id) const {
  if (!isFiltering())
    return list().indexOf(id);
  const NotletEntry* notlet = list().find(id);
  if (notlet == nullptr)
    return std::nullopt;
  const std::size_t place = placeOf(*notlet);
  if (place == m_found.size() || m_found[place] != notlet)
    return std::nullopt;
  return place;
}

/// Where the notlet is among those found, or would be.
std::size_t ArchiveResults::placeOf(const NotletEntry& notlet) const {
  const auto place = std::ranges::partition_point(
      m_found, [&](const NotletEntry* found) { return listedBefore(*found, notlet); });
  return static_cast<std::size_t>(place - m_found.begin());
}

bool ArchiveResults::isSearching() const {
  const bool isLoading = !list().isComplete() && !list().failure();
  return hasUnsearched() || (isFiltering() && isLoading);
}

bool ArchiveResults::hasUnsearched() const {
  return isFiltering() && m_searched < list().size();
}

bool ArchiveResults::hasWork() const {
  return hasUnsearched() || (m_isPreparing && !m_index.isComplete());
}

void ArchiveResults::setFilter(ArchiveFilter filter) {
  if (filter == m_filter)
    return;
  m_filter = std::move(filter);
  m_found.clear();
  m_searched = 0;
  if (isFiltering())
    (void)search(after(firstSlice)); // All that was found is announced as the new results.
  Q_EMIT changed({ListChange::Kind::Reset, 0, size()});
  scheduleWork();
}

void ArchiveResults::prepare() {
  m_isPreparing = true;
  scheduleWork();
}

void ArchiveResults::advance(std::chrono::microseconds time) {
  const Deadline deadline = after(time);
  const std::size_t before = m_found.size();
  const bool wasUnsearched = hasUnsearched();
  if (const std::size_t added = search(deadline); added > 0)
    Q_EMIT changed({ListChange::Kind::Appended, before, added});
  if (wasUnsearched)
    finishIfDone();
}

void ArchiveResults::finishIfDone() {
  if (!isSearching())
    Q_EMIT finished();
}

void ArchiveResults::scheduleWork() {
  if (hasWork() && !m_workTimer.isActive())
    m_workTimer.start(0);
}

void ArchiveResults::work() {
  if (hasUnsearched())
    advance(laterSlice);
  else
    m_index.extend(after(laterSlice));
  scheduleWork();
}

/// Searches on where it stopped and gives the number of notlets found.
std::size_t ArchiveResults::search(Deadline deadline) {
  const std::size_t before = m_found.size();
  std::size_t look = firstLook;
  while (hasUnsearched()) {
    if (m_searched == m_index.size())
      m_index.extend(deadline);
    const std::size_t last = std::min(m_searched + look, m_index.size());
    look = std::min(2 * look, longestLook);
    const auto found = m_index.collect(m_filter, m_searched, last);
    m_found.insert(m_found.end(), found.begin(), found.end());
    m_searched = last;
    if (std::chrono::steady_clock::now() >= deadline)
      break;
  }
  return m_found.size() - before;
}

void ArchiveResults::follow(const ListChange& change, const Gone& gone) {
  if (isFiltering())
    followFiltered(change, gone);
  else
    Q_EMIT changed(change);
  scheduleWork();
}

/// What lies beyond the part that has been searched comes in when the search gets there.
void ArchiveResults::followFiltered(const ListChange& change, const Gone& gone) {
  switch (change.kind) {
  case ListChange::Kind::Inserted:
  case ListChange::Kind::Appended:
    if (change.first < m_searched)
      takeInserted(change.first, change.count);
    return;
  case ListChange::Kind::Removed:
    if (change.first < m_searched)
      takeRemoved(change, gone);
    return;
  case ListChange::Kind::Updated:
    for (std::size_t index = change.first; index < std::min(change.first + change.count, m_searched); ++index)
      takeUpdated(index);
    return;
  case ListChange::Kind::Reset:
    m_found.clear();
    m_searched = 0;
    (void)search(after(firstSlice)); // As for another filter.
    Q_EMIT changed({ListChange::Kind::Reset, 0, m_found.size()});
  }
}

void ArchiveResults::takeInserted(std::size_t first, std::size_t count) {
  m_searched += count;
  const auto admitted = m_index.collect(m_filter, first, first + count);
  if (admitted.empty())
    return;
  const std::size_t place = placeOf(*admitted.front());
  m_found.insert(m_found.begin() + static_cast<std::ptrdiff_t>(place), admitted.begin(), admitted.end());
  Q_EMIT changed({ListChange::Kind::Inserted, place, admitted.size()});
}

void ArchiveResults::takeRemoved(const ListChange& change, const Gone& gone) {
  m_searched -= std::min(change.count, m_searched - change.first);
  const auto isGone = [&](const NotletEntry* notlet) {
    return std::ranges::find(gone, notlet) != gone.end();
  };
  // The removed ones cannot be asked for their place any more; the one that followed them can.
  const NotletEntry* next = change.first < list().size() ? &list().at(change.first) : nullptr;
  const auto begin = std::ranges::partition_point(m_found, [&](const NotletEntry* found) {
    return !isGone(found) && (next == nullptr || listedBefore(*found, *next));
  });
  const auto end = std::find_if_not(begin, m_found.end(), isGone);
  const auto removed = static_cast<std::size_t>(end - begin);
  const auto place = static_cast<std::size_t>(begin - m_found.begin());
  m_found.erase(begin, end);
  if (removed > 0)
    Q_EMIT changed({ListChange::Kind::Removed, place, removed});
}

void ArchiveResults::takeUpdated(std::size_t index) {
  const NotletEntry& notlet = list().at(index);
  const std::size_t place = placeOf(notlet);
  const auto position = m_found.begin() + static_cast<std::ptrdiff_t>(place);
  const bool wasFound = place < m_found.size() && *position == &notlet;
  const bool isAdmitted = m_index.matches(index, m_filter);
  if (wasFound && isAdmitted) {
    Q_EMIT changed({ListChange::Kind::Updated, place, 1});
  } else if (wasFound) {
    m_found.erase(position);
    Q_EMIT changed({ListChange::Kind::Removed, place, 1});
  } else if (isAdmitted) {
    m_found.insert(position, &notlet);
    Q_EMIT changed({ListChange::Kind::Inserted, place, 1});
  }
}

} // namespace notlet
