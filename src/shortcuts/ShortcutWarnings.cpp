#include "shortcuts/ShortcutWarnings.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "core/Text.h"
#include "platform/KeyPress.h"
#include "shortcuts/MacKeyCombination.h"

namespace notlet {

namespace {

constexpr auto keyWords =
    std::to_array<std::string_view>({"return", "backspace", "escape", "left", "right", "down", "up"});

struct KeyInUse {
  std::string_view combination;
  const char* effect;
};

/// What the keys of every window do, unless the leader takes one.
constexpr auto keysInUse = std::to_array<KeyInUse>({
    {"control+,", "opens the settings"},
    {"control+q", "quits Notlet"},
    {"control+a", "selects all text"},
    {"control+c", "copies"},
    {"control+v", "pastes"},
    {"control+x", "cuts"},
    {"control+z", "undoes"},
    {"control+command+j", "opens Quick Notlet"},
});

bool isKeyName(std::string_view name) {
  return std::ranges::find(keyWords, name) != keyWords.end() || graphemeCount(name) == 1;
}

std::string quoted(ShortcutField field) {
  if (field == ShortcutField::leader)
    return "The leader";
  return "“" + std::string(title(field)) + "”";
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (std::size_t index = 0; index < words.size(); ++index) {
    if (index > 0)
      text += index + 1 == words.size() ? " and " : ", ";
    text += words[index];
  }
  return text;
}

/// Next and its alternate may well share a key.
bool doesTheSame(ShortcutField left, ShortcutField right) {
  const auto [first, second] = std::minmax({left, right});
  return (first == ShortcutField::next && second == ShortcutField::nextAlternate) ||
         (first == ShortcutField::previous && second == ShortcutField::previousAlternate);
}

/// The key that the leader takes from all others: one without Control, Alt and Super.
std::optional<MacKeyCombination> plainLeader(const MacShortcutConfig& config) {
  constexpr std::uint32_t chord = KeyModifier::mask & ~KeyModifier::shift;
  auto leader = MacKeyCombination::parse(config.leader);
  if (!leader || (leader->modifiers & chord) != 0)
    return std::nullopt;
  return leader;
}

bool leaderTakes(const MacShortcutConfig& config, ShortcutField field) {
  const auto leader = plainLeader(config);
  return field != ShortcutField::leader && leader && leader->modifiers == 0 &&
         leader->key == lowercased(valueOf(config, field));
}

/// Whether both are asked for the same key in the same moment. The one that comes first in the configuration
/// gets it.
bool collide(const MacShortcutConfig& config, ShortcutField left, ShortcutField right) {
  const std::string key = lowercased(valueOf(config, left));
  return left != right && useOf(left) == useOf(right) && !doesTheSame(left, right) && !key.empty() &&
         key == lowercased(valueOf(config, right));
}

std::string sharing(const MacShortcutConfig& config, ShortcutField field) {
  if (leaderTakes(config, field))
    return "The leader takes this key first.";
  std::vector<std::string> losers;
  for (const ShortcutField other : allShortcutFields) {
    if (field == ShortcutField::leader ? !leaderTakes(config, other) : !collide(config, field, other))
      continue;
    if (other < field)
      return quoted(other) + " takes this key first.";
    losers.push_back(quoted(other));
  }
  return losers.empty() ? std::string() : "Takes this key from " + joined(losers) + ".";
}

std::string leaderWarning(const MacShortcutConfig& config) {
  const auto leader = MacKeyCombination::parse(config.leader);
  if (!leader)
    return "Not a key combination, such as control+s.";
  if (!isKeyName(leader->key))
    return "No key is called “" + leader->key + "”.";
  for (const auto& [combination, effect] : keysInUse) {
    if (MacKeyCombination::parse(combination) == leader)
      return "This key then no longer " + std::string(effect) + ".";
  }
  if (plainLeader(config))
    return "Without Control, Alt or Super this key can no longer be typed.";
  return {};
}

std::string keyWarning(const std::string& value) {
  const std::string name = lowercased(value);
  if (name.empty())
    return "No key: keys that type nothing, such as F5, then do this.";
  if (name == " ")
    return "This is the space bar.";
  if (trimmed(name) != name)
    return "The key is not found because of the spaces around it.";
  if (isKeyName(name))
    return {};
  const auto combination = MacKeyCombination::parse(name);
  if (name.find('+') != std::string::npos && combination)
    return "Name a single key: a combination is not found here.";
  return "No key is called “" + value + "”.";
}

} // namespace

std::string shortcutWarning(const MacShortcutConfig& config, ShortcutField field) {
  const std::string own =
      field == ShortcutField::leader ? leaderWarning(config) : keyWarning(valueOf(config, field));
  const std::string shared = sharing(config, field);
  return own.empty() || shared.empty() ? own + shared : own + " " + shared;
}

} // namespace notlet
