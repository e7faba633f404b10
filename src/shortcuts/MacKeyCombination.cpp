#include "shortcuts/MacKeyCombination.h"

#include <algorithm>
#include <array>
#include <unicode/uchar.h>
#include <vector>

#include "core/Text.h"
#include "platform/KeyPress.h"

namespace notlet {

namespace {

struct NamedKey {
  std::uint16_t keyCode;
  const char* name;
};

constexpr auto namedKeys = std::to_array<NamedKey>({
    {KeyCode::returnKey, "return"},
    {KeyCode::keypadEnter, "return"},
    {KeyCode::backspace, "backspace"},
    {KeyCode::escape, "escape"},
    {KeyCode::left, "left"},
    {KeyCode::right, "right"},
    {KeyCode::down, "down"},
    {KeyCode::up, "up"},
});

struct ModifierWord {
  std::string_view word;
  std::uint32_t modifier;
};

constexpr auto modifierWords = std::to_array<ModifierWord>({
    {"control", KeyModifier::control},
    {"ctrl", KeyModifier::control},
    {"command", KeyModifier::command},
    {"cmd", KeyModifier::command},
    {"option", KeyModifier::option},
    {"alt", KeyModifier::option},
    {"shift", KeyModifier::shift},
});

/// The pieces between the plus signs, trimmed, as views into the text; empty ones do not count.
std::vector<std::string_view> pieces(std::string_view text) {
  std::vector<std::string_view> found;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('+'), text.size());
    if (const std::string_view piece = trimmed(text.substr(0, end)); !piece.empty())
      found.push_back(piece);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return found;
}

} // namespace

bool isTypedWithShift(std::string_view keyName) {
  if (keyName.empty())
    return false;
  const CodePoint character = firstCodePoint(keyName);
  const auto value = static_cast<UChar32>(character.value);
  return character.length == keyName.size() && u_isgraph(value) != 0 && u_toupper(value) == value;
}

std::string macKeyName(std::uint16_t keyCode, std::optional<std::string_view> characters) {
  const auto named = std::ranges::find(namedKeys, keyCode, &NamedKey::keyCode);
  if (named != namedKeys.end())
    return named->name;
  return lowercased(characters.value_or(""));
}

std::optional<MacKeyCombination> MacKeyCombination::parse(std::string_view notation) {
  const std::string text = lowercased(notation);
  std::vector<std::string_view> words = pieces(text);
  if (words.empty())
    return std::nullopt;
  MacKeyCombination combination{std::string(words.back())};
  words.pop_back();
  for (const std::string_view word : words) {
    const auto* const known = std::ranges::find(modifierWords, word, &ModifierWord::word);
    if (known == modifierWords.end())
      return std::nullopt;
    combination.modifiers |= known->modifier;
  }
  return combination;
}

bool MacKeyCombination::matches(std::string_view keyName, std::uint32_t modifierRawValue) const {
  return keyName == key && (modifierRawValue & KeyModifier::mask) == modifiers;
}

} // namespace notlet
