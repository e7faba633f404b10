#include "archive/ArchiveIndex.h"

#include <algorithm>

#include "archive/ParallelCollect.h"

namespace notlet {

namespace {

/// Folding one takes microseconds, asking for the time a fraction of one.
constexpr std::size_t addedPerLook = 16;
/// Searching these takes half a millisecond, starting a thread a fraction of a tenth.
constexpr std::size_t shortestSearchedPart = 8192;

} // namespace

ArchiveIndex::ArchiveIndex(ModelContext& modelContext, QObject* parent)
    : QObject(parent), m_modelContext(modelContext) {
  connect(&m_modelContext, &ModelContext::listChanged, this, &ArchiveIndex::follow);
}

void ArchiveIndex::extend(Deadline deadline) {
  while (!isComplete()) {
    for (std::size_t left = addedPerLook; left > 0 && !isComplete(); --left)
      m_slots.push_back(add(m_modelContext.at(size())));
    if (std::chrono::steady_clock::now() >= deadline)
      return;
  }
}

ArchiveIndex::Slot ArchiveIndex::add(const NotletEntry& notlet) {
  m_entries.push_back(&notlet);
  return m_archive.add(notlet);
}

bool ArchiveIndex::matches(std::size_t index, const ArchiveFilter& filter) const {
  const Slot slot = m_slots[index];
  return m_archive.matches(slot, filter.search) &&
         (!filter.tagsBesidePhrase || m_archive.matches(slot, *filter.tagsBesidePhrase));
}

std::vector<const NotletEntry*> ArchiveIndex::collect(const ArchiveFilter& filter, std::size_t first,
                                                      std::size_t last) const {
  return collectInParallel(first, last, shortestSearchedPart, [&](std::size_t begin, std::size_t end) {
    return collectPart(filter, begin, end);
  });
}

std::vector<const NotletEntry*> ArchiveIndex::collectPart(const ArchiveFilter& filter, std::size_t first,
                                                          std::size_t last) const {
  std::vector<const NotletEntry*> found;
  while (first < last) {
    const std::size_t end = endOfRun(first, last);
    const Slot firstSlot = m_slots[first];
    const Slot endSlot = m_slots[end - 1] + 1;
    // Fewer carry a tag than hold a phrase of small words.
    const SearchQuery& rarer = filter.tagsBesidePhrase ? *filter.tagsBesidePhrase : filter.search;
    for (const Slot slot : m_archive.collect(rarer, firstSlot, endSlot)) {
      if (!filter.tagsBesidePhrase || m_archive.matches(slot, filter.search))
        found.push_back(m_entries[slot]);
    }
    first = end;
  }
  return found;
}

/// The end of the list indexes from `first` on whose slots ascend with nothing but freed ones between, so
/// that the archive can be searched there in one go.
std::size_t ArchiveIndex::endOfRun(std::size_t first, std::size_t last) const {
  auto slot = m_slots.begin() + static_cast<std::ptrdiff_t>(first);
  Slot next = *slot + 1;
  for (++first, ++slot; first < last; ++first, ++slot, ++next) {
    if (*slot == next)
      continue;
    if (*slot < next)
      break;
    const auto skipped = std::span(m_entries).subspan(next, *slot - next);
    if (std::ranges::any_of(skipped, [](const NotletEntry* entry) { return entry != nullptr; }))
      break;
    next = *slot;
  }
  return first;
}

void ArchiveIndex::follow(const ListChange& change) {
  Gone gone;
  switch (change.kind) {
  case ListChange::Kind::Inserted:
  case ListChange::Kind::Appended:
    insert(change.first, change.count);
    break;
  case ListChange::Kind::Removed:
    gone = remove(change.first, change.count);
    break;
  case ListChange::Kind::Updated:
    for (std::size_t index = change.first; index < std::min(change.first + change.count, size()); ++index)
      m_archive.replace(m_slots[index], m_modelContext.at(index));
    break;
  case ListChange::Kind::Reset:
    m_archive.clear();
    m_entries.clear();
    m_slots.clear();
    break;
  }
  Q_EMIT listChanged(change, gone);
}

/// What comes in at the end of what is covered waits until extend() gets there.
void ArchiveIndex::insert(std::size_t first, std::size_t count) {
  if (first >= size())
    return;
  std::vector<Slot> slots;
  for (std::size_t index = first; index < first + count; ++index)
    slots.push_back(add(m_modelContext.at(index)));
  m_slots.insert(m_slots.begin() + static_cast<std::ptrdiff_t>(first), slots.begin(), slots.end());
}

ArchiveIndex::Gone ArchiveIndex::remove(std::size_t first, std::size_t count) {
  Gone gone;
  const std::size_t end = std::min(first + count, size());
  for (std::size_t index = first; index < end; ++index) {
    const Slot slot = m_slots[index];
    m_archive.remove(slot);
    gone.push_back(std::exchange(m_entries[slot], nullptr));
  }
  if (first < end)
    m_slots.erase(m_slots.begin() + static_cast<std::ptrdiff_t>(first),
                  m_slots.begin() + static_cast<std::ptrdiff_t>(end));
  return gone;
}

} // namespace notlet
