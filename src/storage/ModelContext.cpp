#include "storage/ModelContext.h"

#include <algorithm>
#include <iterator>

#include "core/KeywordExtractor.h"
#include <utility>

namespace notlet {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::size_t firstPage = 200;
constexpr std::size_t largestPage = 4096;
/// With what it takes to put the notlets into the list, a slice stays below four milliseconds.
constexpr auto sliceReading = 1500us;
constexpr auto pauseBeforeDisk = 2s;

} // namespace

ModelContext::ModelContext(std::unique_ptr<NotletDatabase> database, QObject* parent)
    : ModelContext(database->file(), database->access(), std::move(database), parent) {
}

ModelContext::ModelContext(const std::filesystem::path& file, Access access, QObject* parent)
    : ModelContext(file, access, nullptr, parent) {
}

ModelContext::ModelContext(const std::filesystem::path& file, Access access,
                           std::unique_ptr<NotletDatabase>&& database, QObject* parent)
    : QObject(parent), m_file(file), m_access(access), m_database(std::move(database)), m_watch(file) {
  for (QTimer* timer : {&m_loadTimer, &m_followTimer})
    timer->setSingleShot(true);
  if (m_database)
    m_database->setListedKeywords(ListedKeywords::BeyondText);
  connect(&m_loadTimer, &QTimer::timeout, this, &ModelContext::loadSlice);
  connect(&m_followTimer, &QTimer::timeout, this, &ModelContext::followStore);
  connect(&m_watch, &StoreWatch::touched, this, &ModelContext::followStore);
  const OpeningTerms unhurried;
  if (const StoreResult<void> opened = openStore(unhurried.patience); !opened) {
    handle(opened.error(), m_loadTimer);
    return;
  }
  m_database->setReadPatience(unhurried.patience);
  loadSlice();
  // From now on the event loop waits for nobody.
  m_database->setReadPatience(0ms);
}

/// Sees to it that the store is open: the first time, and when another file has come into its place. The list
/// then becomes what that one holds, and what is not saved yet stays so.
StoreResult<void> ModelContext::openStore(std::chrono::milliseconds patience) {
  if (m_database && m_database->isInPlace())
    return {};
  const bool isFirst = m_database == nullptr;
  // A store that got lost is not to look like one that was emptied.
  auto opened = NotletDatabase::open(m_file, m_access, {.createsMissing = isFirst, .patience = patience});
  if (!opened && !isFirst && opened.error().kind == StoreError::Kind::Missing)
    opened.error().message =
        "The notlet store “" + m_file.string() +
        "” is no longer there. Put it back, and Notlet goes on with it; or quit Notlet and "
        "start it again, which makes a new and empty one.";
  if (!opened) {
    m_obstacle = opened.error();
    return std::unexpected(opened.error());
  }
  m_database = std::move(*opened);
  m_database->setListedKeywords(ListedKeywords::BeyondText);
  m_database->setReadPatience(0ms);
  m_obstacle.reset();
  m_failure.reset();
  m_watch.restart();
  if (isFirst)
    Q_EMIT hasOpened();
  else
    readAnew();
  return {};
}

void ModelContext::insert(NotletEntry entry) {
  if (find(entry.id))
    return replace(std::move(entry));
  const Uuid id = entry.id;
  rememberStored(id);
  entry.keywords = keywordsBeyondText(entry);
  place(std::move(entry));
  forgetUnchanged(id);
}

void ModelContext::replace(NotletEntry entry) {
  const Uuid id = entry.id;
  if (!find(id))
    return;
  rememberStored(id);
  entry.keywords = keywordsBeyondText(entry);
  assign(std::move(entry));
  forgetUnchanged(id);
}

void ModelContext::remove(const Uuid& id) {
  if (!find(id))
    return;
  // The identifier may be that of the notlet which goes away.
  const Uuid copy = id;
  rememberStored(copy);
  drop(copy);
  forgetUnchanged(copy);
}

Result<void> ModelContext::save() {
  ChangeSet changes;
  const std::vector<NotletEntry> upserts = changedEntries();
  for (const NotletEntry& entry : upserts)
    changes.upserts.push_back(&entry);
  for (const auto& [id, stored] : m_stored) {
    if (!find(id))
      changes.deletions.push_back(id);
  }
  if (changes.upserts.empty() && changes.deletions.empty())
    return {};

  if (const StoreResult<void> opened = openStore(OpeningTerms().patience); !opened)
    return std::unexpected(static_cast<const Error&>(opened.error()));
  if (m_failure && m_failure->kind == StoreError::Kind::Damaged)
    return std::unexpected(static_cast<const Error&>(*m_failure));
  const StoreResult<std::int64_t> revisionBefore = m_database->apply(changes);
  if (!revisionBefore) {
    // Whatever happened to the disk, the list is to show what is in the store.
    m_seenVersion.reset();
    m_followTimer.start(busyPause);
    if (revisionBefore.error().kind == StoreError::Kind::Damaged)
      fail(revisionBefore.error());
    return std::unexpected(static_cast<const Error&>(revisionBefore.error()));
  }
  m_stored.clear();
  // Our own rows need not be read again, unless others wrote before them.
  if (*revisionBefore == m_seenRevision)
    m_seenRevision += static_cast<std::int64_t>(changes.upserts.size());
  return {};
}

/// As they are to be stored.
std::vector<NotletEntry> ModelContext::changedEntries() const {
  std::vector<NotletEntry> changed;
  for (const auto& [id, stored] : m_stored) {
    if (const NotletEntry* entry = find(id))
      changed.emplace_back(*entry).keywords = KeywordExtractor::extractKeywords(entry->content);
  }
  return changed;
}

void ModelContext::rollback() {
  for (auto& [id, stored] : std::exchange(m_stored, {})) {
    if (!stored)
      drop(id);
    else if (find(id))
      assign(std::move(*stored));
    else
      place(std::move(*stored));
  }
}

void ModelContext::rememberStored(const Uuid& id) {
  if (m_stored.contains(id))
    return;
  const NotletEntry* entry = find(id);
  m_stored.emplace(id, entry ? std::optional(*entry) : std::nullopt);
}

void ModelContext::forgetUnchanged(const Uuid& id) {
  const auto stored = m_stored.find(id);
  if (stored == m_stored.end())
    return;
  const NotletEntry* entry = find(id);
  if (entry ? stored->second == *entry : !stored->second)
    m_stored.erase(stored);
}

void ModelContext::place(NotletEntry entry) {
  m_tallies.add(entry);
  const std::size_t index = m_list.insert(std::move(entry));
  Q_EMIT listChanged({ListChange::Kind::Inserted, index, 1});
}

void ModelContext::assign(NotletEntry entry) {
  const Uuid id = entry.id;
  if (find(id)->createdAt != entry.createdAt) {
    drop(id);
    return place(std::move(entry));
  }
  const std::size_t index = m_list.placeOf(entry.createdAt, id);
  m_tallies.add(entry);
  m_tallies.remove(m_list.replace(std::move(entry)));
  Q_EMIT listChanged({ListChange::Kind::Updated, index, 1});
}

void ModelContext::drop(const Uuid& id) {
  const std::optional<std::size_t> index = indexOf(id);
  if (!index)
    return;
  m_tallies.remove(m_list.take(id));
  Q_EMIT listChanged({ListChange::Kind::Removed, *index, 1});
}

/// Takes in what the store holds. Neighbours are announced together, each group before the next comes in.
void ModelContext::adopt(std::vector<NotletEntry> newestFirst, ListChange::Kind kindAtEnd) {
  ListChange group{ListChange::Kind::Inserted, 0, 0};
  const auto announce = [&] {
    if (group.count == 0)
      return;
    const bool isAtEnd = group.first + group.count == size();
    group.kind = isAtEnd ? kindAtEnd : ListChange::Kind::Inserted;
    Q_EMIT listChanged(std::exchange(group, {}));
  };
  for (NotletEntry& entry : newestFirst) {
    if (const auto unsaved = m_stored.find(entry.id); unsaved != m_stored.end()) {
      unsaved->second = std::move(entry);
      continue;
    }
    if (const NotletEntry* known = find(entry.id)) {
      announce();
      if (*known != entry)
        assign(std::move(entry));
      continue;
    }
    const std::size_t index = m_list.placeOf(entry.createdAt, entry.id);
    if (group.count == 0 || index != group.first + group.count) {
      announce();
      group.first = m_list.placeOf(entry.createdAt, entry.id);
    }
    m_tallies.add(entry);
    m_list.insert(std::move(entry));
    ++group.count;
  }
  announce();
}

StoreResult<void> ModelContext::beginLoading() {
  // Noted before the first page: what is written after this is found as a change.
  const StoreResult<std::int64_t> version = m_database->dataVersion();
  if (!version)
    return std::unexpected(version.error());
  const StoreResult<std::int64_t> revision = m_database->lastRevision();
  if (!revision)
    return std::unexpected(revision.error());
  const StoreResult<std::size_t> estimate = m_database->estimatedCount();
  if (!estimate)
    return std::unexpected(estimate.error());
  m_seenVersion = *version;
  m_seenRevision = *revision;
  // Growing the table of a million notlets would take longer than a slice may.
  m_list.reserve(*estimate);
  m_hasBegun = true;
  return {};
}

void ModelContext::loadSlice() {
  if (!m_database) {
    if (const StoreResult<void> opened = openStore(0ms); !opened)
      return handle(opened.error(), m_loadTimer);
  }
  if (!m_hasBegun) {
    if (const StoreResult<void> begun = beginLoading(); !begun)
      return handle(begun.error(), m_loadTimer);
  }
  const bool isFirst = !m_loadedUpTo;
  StoreResult<std::vector<NotletEntry>> page =
      m_database->newest(isFirst ? firstPage : largestPage, m_loadedUpTo,
                         isFirst ? Clock::time_point::max() : Clock::now() + sliceReading);
  if (!page)
    return handle(page.error(), m_loadTimer);
  if (page->empty() || (isFirst && page->size() < firstPage))
    m_isComplete = true;
  if (!page->empty()) {
    m_loadedUpTo = ListPosition{page->back().createdAt, page->back().id};
    adopt(std::move(*page), ListChange::Kind::Appended);
  }
  if (m_isComplete)
    finishLoading();
  else if (!m_isLoadingPaused)
    m_loadTimer.start(0);
}

void ModelContext::setLoadingPaused(bool paused) {
  const bool concernsLoading = m_loadedUpTo && !m_isComplete && !m_failure;
  if (std::exchange(m_isLoadingPaused, paused) == paused || !concernsLoading)
    return;
  if (paused)
    m_loadTimer.stop();
  else
    m_loadTimer.start(0);
}

void ModelContext::finishLoading() {
  Q_EMIT loadingFinished();
  if (m_mayMissDeletions)
    m_followTimer.start(0);
}

void ModelContext::handle(const StoreError& error, QTimer& retry) {
  if (error.kind == StoreError::Kind::Busy)
    retry.start(busyPause);
  else if (error.kind == StoreError::Kind::Unreachable && !m_database)
    retry.start(pauseBeforeDisk);
  else
    fail(error);
}

void ModelContext::fail(const StoreError& error) {
  if (m_failure)
    return;
  m_failure = error;
  m_loadTimer.stop();
  m_followTimer.stop();
  // Whoever listens may not have been there yet when the first page could not be read.
  QMetaObject::invokeMethod(
      this, [this] { Q_EMIT storeFailed(QString::fromStdString(m_failure->message)); }, Qt::QueuedConnection);
}

} // namespace notlet
