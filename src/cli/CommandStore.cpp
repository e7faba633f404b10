#include "cli/CommandStore.h"

#include <algorithm>
#include <string>

#include "platform/Places.h"

namespace notlet {
namespace {

/// Asks again while another program writes: a command has more patience than a window that must not stand
/// still. Each try waits for a quarter of a second.
template<typename Try>
auto patiently(const Try& tryOnce) {
  constexpr int mostTries = 8;
  auto result = tryOnce();
  for (int tries = 1; tries < mostTries && !result && result.error().kind == StoreError::Kind::Busy; ++tries)
    result = tryOnce();
  return result;
}

/// How many notlets to read next, so that a portion takes about a megabyte.
std::size_t nextPortion(std::size_t portion, const std::vector<NotletEntry>& read) {
  constexpr std::size_t largest = 1024;
  constexpr std::size_t comfortableBytes = 1 << 20;
  std::size_t bytes = 0;
  for (const NotletEntry& notlet : read)
    bytes += notlet.content.size();
  return bytes > comfortableBytes ? std::max<std::size_t>(1, portion / 8) : std::min(largest, portion * 2);
}

} // namespace

CommandResult<std::filesystem::path> storePath() {
  const std::optional<std::filesystem::path> folder = Places::fromEnvironment().data;
  if (!folder)
    return commandFailure("The folder for the notlets does not exist. Is the home folder set?");
  return *folder / "Notlet.store";
}

CommandResult<CommandStore> CommandStore::open(Access access) {
  const CommandResult<std::filesystem::path> file = storePath();
  if (!file)
    return std::unexpected(file.error());
  StoreResult<std::unique_ptr<NotletDatabase>> database =
      patiently([&] { return NotletDatabase::open(*file, access); });
  if (database)
    return CommandStore(std::move(*database));
  if (database.error().kind == StoreError::Kind::Missing)
    return CommandStore(nullptr);
  return std::unexpected(database.error());
}

CommandResult<void> CommandStore::visit(const std::function<bool(const NotletEntry&)>& visit) {
  std::optional<ListPosition> last;
  for (std::size_t portion = 16; m_database != nullptr;) {
    const StoreResult<std::vector<NotletEntry>> read =
        patiently([&] { return m_database->newest(portion, last); });
    if (!read)
      return std::unexpected(read.error());
    if (!std::ranges::all_of(*read, visit) || read->size() < portion)
      break;
    last = ListPosition{.createdAt = read->back().createdAt, .id = read->back().id};
    portion = nextPortion(portion, *read);
  }
  return {};
}

CommandResult<void> CommandStore::scan(RowFilter& filter,
                                       const std::function<void(const NotletEntry&)>& visit) {
  std::optional<std::int64_t> last = 0;
  while (m_database != nullptr && last) {
    const auto read = patiently([&] { return m_database->scan(*last, filter, visit); });
    if (!read)
      return std::unexpected(read.error());
    last = *read;
  }
  return {};
}

CommandResult<Uuid> CommandStore::findId(std::string_view idBeginning) {
  constexpr std::size_t mostNamed = 5;
  if (std::ranges::count(idBeginning, '-') == std::ranges::ssize(idBeginning))
    return usageFailure("An empty id names no notlet.");
  StoreResult<std::vector<Uuid>> ids;
  if (m_database != nullptr)
    ids = patiently([&] { return m_database->idsBeginningWith(idBeginning); });
  if (!ids)
    return std::unexpected(ids.error());
  if (ids->empty())
    return commandFailure("No notlet has an id that begins with " + inQuotes(idBeginning) + ".");
  if (ids->size() == 1)
    return ids->front();
  std::string message = inQuotes(idBeginning) + " begins the ids of " + std::to_string(ids->size()) +
                        " notlets; give more of the one you mean:";
  for (std::size_t index = 0; index < std::min(mostNamed, ids->size()); ++index)
    message += " " + (*ids)[index].text();
  return commandFailure(message + (ids->size() > mostNamed ? " …" : ""));
}

CommandResult<NotletEntry> CommandStore::find(std::string_view idBeginning) {
  const CommandResult<Uuid> id = findId(idBeginning);
  if (!id)
    return std::unexpected(id.error());
  CommandResult<std::optional<NotletEntry>> found = find(*id);
  if (!found)
    return std::unexpected(found.error());
  std::optional<NotletEntry> notlet = std::move(*found);
  if (!notlet)
    return commandFailure("The notlet was deleted by another program in this moment.");
  return std::move(*notlet);
}

CommandResult<std::optional<NotletEntry>> CommandStore::find(const Uuid& id) {
  StoreResult<std::optional<NotletEntry>> found;
  if (m_database != nullptr)
    found = patiently([&] { return m_database->find(id); });
  if (!found)
    return std::unexpected(found.error());
  return std::move(*found);
}

CommandResult<std::vector<Uuid>> CommandStore::allIds() {
  StoreResult<std::vector<Uuid>> ids;
  if (m_database != nullptr)
    ids = patiently([&] { return m_database->allIds(); });
  if (!ids)
    return std::unexpected(ids.error());
  return std::move(*ids);
}

CommandResult<void> CommandStore::apply(const ChangeSet& changes) {
  const StoreResult<std::int64_t> applied = patiently([&] { return m_database->apply(changes); });
  if (!applied)
    return std::unexpected(applied.error());
  return {};
}

} // namespace notlet
