#include "cli/SelectedNotlets.h"

#include <algorithm>
#include <deque>
#include <limits>
#include <vector>

#include "cli/QuerySieve.h"

namespace notlet {

namespace {

/// Takes in what is found in the order of writing and gives it back in the order of the list, printed as long
/// as there is room for that.
class FoundNotlets {
 public:
  struct Found {
    ListPosition position;
    /// Nothing when there was no room.
    std::optional<std::string_view> printed;
  };

  explicit FoundNotlets(std::size_t room) : m_room(room) {}

  [[nodiscard]] bool hasRoom() const { return m_kept < m_room; }
  void add(const ListPosition& position) { m_found.push_back({position, std::nullopt}); }
  void add(const ListPosition& position, std::string_view printed) {
    m_found.push_back({position, keep(printed)});
  }

  /// Newest first. What was written anew meanwhile may have been found twice; the later stays.
  const std::vector<Found>& inListOrder() {
    const auto key = [](const Found& found) {
      return std::pair(found.position.createdAt, found.position.id);
    };
    std::ranges::reverse(m_found);
    // Mostly the order of writing is that of creation.
    if (!std::ranges::is_sorted(m_found, std::ranges::greater{}, key))
      std::ranges::stable_sort(m_found, std::ranges::greater{}, key);
    const auto repeated = std::ranges::unique(m_found, {}, key);
    m_found.erase(repeated.begin(), repeated.end());
    return m_found;
  }

 private:
  /// In blocks: one text that grows to tens of megabytes would be copied over and over.
  std::string_view keep(std::string_view text) {
    constexpr std::size_t usualBlock = 1 << 20;
    if (m_blocks.empty() || m_blocks.back().capacity() - m_blocks.back().size() < text.size())
      m_blocks.emplace_back().reserve(std::max(usualBlock, text.size()));
    m_kept += text.size();
    std::string& block = m_blocks.back();
    block.append(text);
    return std::string_view(block).substr(block.size() - text.size());
  }

  std::size_t m_room;
  std::size_t m_kept = 0;
  std::deque<std::string> m_blocks;
  std::vector<Found> m_found;
};

} // namespace

CommandResult<void> writeSelected(CommandStore& store, const Selection& selection,
                                  std::optional<std::size_t> limit,
                                  const std::function<std::string(const NotletEntry&)>& print,
                                  const std::function<bool(std::string_view)>& write) {
  std::size_t left = limit.value_or(std::numeric_limits<std::size_t>::max());
  if (left == 0)
    return {};
  const auto writeOne = [&](std::string_view text) { return write(text) && --left > 0; };
  if (selection.holdsEverything())
    return store.visit([&](const NotletEntry& notlet) { return writeOne(print(notlet)); });

  // With a limit, few of many that are found are printed.
  constexpr std::size_t roomWithoutLimit = 256 << 20;
  FoundNotlets found(limit ? 0 : roomWithoutLimit);
  QuerySieve sieve(selection);
  CommandResult<void> scanned = store.scan(sieve, [&](const NotletEntry& notlet) {
    if (!sieve.isCertain() && !selection.holds(notlet))
      return;
    const ListPosition position{notlet.createdAt, notlet.id};
    found.hasRoom() ? found.add(position, print(notlet)) : found.add(position);
  });
  if (!scanned)
    return scanned;
  for (const FoundNotlets::Found& each : found.inListOrder()) {
    if (each.printed) {
      if (!writeOne(*each.printed))
        break;
      continue;
    }
    CommandResult<std::optional<NotletEntry>> stored = store.find(each.position.id);
    if (!stored)
      return std::unexpected(stored.error());
    // It may have been edited or deleted since.
    const std::optional<NotletEntry> notlet = std::move(*stored);
    if (notlet && selection.holds(*notlet) && !writeOne(print(*notlet)))
      break;
  }
  return {};
}

} // namespace notlet
