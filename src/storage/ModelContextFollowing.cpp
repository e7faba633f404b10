// Keeping up with what others do to the store.

#include <algorithm>
#include <tuple>
#include <unordered_set>

#include "storage/ModelContext.h"

namespace notlet {
namespace {

using namespace std::chrono_literals;

constexpr auto pauseWithoutStore = 1s;
constexpr std::size_t changesAtOnce = 500;
constexpr std::size_t comparedAtOnce = 2000;

} // namespace

/// Holds the list against a file that has nothing to do with the one before. Only differences are announced.
void ModelContext::readAnew() {
  m_seenRevision = 0;
  m_seenVersion.reset();
  m_followTimer.start(0);
  if (!m_isComplete)
    m_loadTimer.start(0);
}

void ModelContext::followStore() {
  if (!m_hasBegun)
    return;
  if (const StoreResult<void> opened = openStore(0ms); !opened)
    return m_followTimer.start(opened.error().kind == StoreError::Kind::Busy ? busyPause : pauseWithoutStore);
  if (m_failure)
    return;
  const StoreResult<std::int64_t> version = m_database->dataVersion();
  if (!version)
    return handle(version.error(), m_followTimer);
  if (m_seenVersion != *version) {
    m_mayMissDeletions = true;
    m_comparison = {};
    if (const StoreResult<void> followed = followChanges(); !followed)
      return handle(followed.error(), m_followTimer);
    if (m_followTimer.isActive())
      return;
    m_seenVersion = *version;
  }
  // Until all are loaded, which are gone cannot be told from their number.
  if (!m_mayMissDeletions || !m_isComplete)
    return;
  if (const StoreResult<void> followed = followDeletions(); !followed)
    handle(followed.error(), m_followTimer);
}

StoreResult<void> ModelContext::followChanges() {
  const StoreResult<std::int64_t> lastRevision = m_database->lastRevision();
  if (!lastRevision)
    return std::unexpected(lastRevision.error());
  // Somebody has copied an earlier state over the file.
  if (*lastRevision < m_seenRevision)
    m_seenRevision = 0;
  StoreResult<std::vector<StoredNotlet>> changed = m_database->changedSince(m_seenRevision, changesAtOnce);
  if (!changed)
    return std::unexpected(changed.error());
  if (changed->empty())
    return {};
  m_seenRevision = changed->back().revision;
  if (changed->size() == changesAtOnce)
    m_followTimer.start(0);
  // An older one than all that are loaded may come in, too; its page will find it there.
  std::vector<NotletEntry> entries;
  for (StoredNotlet& stored : *changed)
    entries.push_back(std::move(stored.entry));
  std::ranges::sort(entries, listedBefore);
  adopt(std::move(entries), ListChange::Kind::Inserted);
  return {};
}

std::size_t ModelContext::storedCount() const {
  std::size_t count = size();
  for (const auto& [id, stored] : m_stored) {
    if (stored && !find(id))
      ++count;
    else if (!stored && find(id))
      --count;
  }
  return count;
}

/// Finds what others have deleted, which only its absence tells.
StoreResult<void> ModelContext::followDeletions() {
  if (!m_comparison.isUnderWay) {
    const StoreResult<std::size_t> count = m_database->count();
    if (!count)
      return std::unexpected(count.error());
    m_comparison = {true, storedCount() - std::min(*count, storedCount()), std::nullopt};
    if (const StoreResult<void> compared = compareUnsaved(); !compared)
      return compared;
  }
  if (m_comparison.missing > 0) {
    if (const StoreResult<void> compared = compareSlice(); !compared)
      return compared;
  }
  m_mayMissDeletions = m_comparison.missing > 0;
  if (m_mayMissDeletions)
    m_followTimer.start(0);
  else
    m_comparison = {};
  return {};
}

StoreResult<void> ModelContext::compareUnsaved() {
  for (auto& [id, stored] : m_stored) {
    if (!stored || m_comparison.missing == 0)
      continue;
    const StoreResult<std::optional<NotletEntry>> found = m_database->find(id);
    if (!found)
      return std::unexpected(found.error());
    if (found->has_value())
      continue;
    stored.reset();
    --m_comparison.missing;
  }
  std::erase_if(m_stored, [&](const auto& unsaved) { return !unsaved.second && !find(unsaved.first); });
  return {};
}

/// Compares a part of the list with the same part of the store.
StoreResult<void> ModelContext::compareSlice() {
  const std::optional<ListPosition> after = m_comparison.comparedUpTo;
  const StoreResult<std::vector<ListPosition>> stored = m_database->positions(comparedAtOnce, after);
  if (!stored)
    return std::unexpected(stored.error());
  const bool isLast = stored->size() < comparedAtOnce;
  std::unordered_set<Uuid> present;
  for (const ListPosition& position : *stored)
    present.insert(position.id);
  const auto lies = [](const NotletEntry& entry, const ListPosition& position) {
    return std::tie(position.createdAt, position.id) <=> std::tie(entry.createdAt, entry.id);
  };
  std::vector<Uuid> gone;
  for (std::size_t index = after ? m_list.placeOf(after->createdAt, after->id) : 0; index < size(); ++index) {
    const NotletEntry& entry = at(index);
    if (after && lies(entry, *after) == 0)
      continue;
    if (!isLast && lies(entry, stored->back()) > 0)
      break;
    if (!m_stored.contains(entry.id) && !present.contains(entry.id))
      gone.push_back(entry.id);
  }
  m_comparison.missing = isLast ? 0 : m_comparison.missing - std::min(m_comparison.missing, gone.size());
  if (!isLast)
    m_comparison.comparedUpTo = stored->back();
  for (const Uuid& id : gone)
    drop(id);
  return {};
}

} // namespace notlet
