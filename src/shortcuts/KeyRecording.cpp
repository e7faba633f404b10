#include "shortcuts/KeyRecording.h"

#include <array>

#include "core/Text.h"
#include "shortcuts/MacKeyCombination.h"

namespace notlet {

namespace {

struct ModifierWord {
  std::uint32_t modifier;
  const char* word;
};

constexpr auto modifierWords = std::to_array<ModifierWord>({
    {KeyModifier::control, "control"},
    {KeyModifier::option, "alt"},
    {KeyModifier::shift, "shift"},
    {KeyModifier::command, "command"},
});

bool isVisibleOrSpace(const std::string& name) {
  constexpr char32_t firstPrintable = U' ';
  constexpr char32_t deleteCharacter = 0x7F;
  if (name.empty())
    return false;
  const char32_t first = firstCodePoint(name).value;
  return first >= firstPrintable && first != deleteCharacter;
}

/// A chord and a key after the leader are also found by what they type on a Latin layout, and that name holds
/// for all layouts.
std::string nameFor(ShortcutUse use, const KeyPress& press) {
  const bool isChord = (press.modifiers & KeyModifier::mask & ~KeyModifier::shift) != 0;
  const bool isFoundInLatin = use == ShortcutUse::afterLeader || (use == ShortcutUse::leader && isChord);
  const bool hasLatin = press.latinCharacters && !press.latinCharacters->empty();
  return macKeyName(press.keyCode, isFoundInLatin && hasLatin ? press.latinCharacters : press.characters);
}

Result<std::string> combination(const std::string& name, std::uint32_t modifiers) {
  std::string text;
  for (const auto& [modifier, word] : modifierWords) {
    if ((modifiers & modifier) != 0)
      text += std::string(word) + "+";
  }
  text += name;
  const auto parsed = MacKeyCombination::parse(text);
  if (!parsed || *parsed != MacKeyCombination{name, modifiers})
    return failure("This key cannot be the leader. Press another.");
  return text;
}

} // namespace

Result<std::string> recordedKey(ShortcutField field, const KeyPress& press) {
  const ShortcutUse use = useOf(field);
  const std::uint32_t modifiers = press.modifiers & KeyModifier::mask;
  std::string name = nameFor(use, press);
  if (!isVisibleOrSpace(name))
    return failure("Notlet has no name for this key. Press another.");
  if (use == ShortcutUse::leader)
    return combination(name, modifiers);
  const bool isShiftAllowed = use != ShortcutUse::direct || isTypedWithShift(name);
  if ((modifiers & ~KeyModifier::shift) != 0 || (modifiers != 0 && !isShiftAllowed))
    return failure("Press a single key, without " + std::string(use == ShortcutUse::direct ? "Shift, " : "") +
                   "Control, Alt or Super.");
  return name;
}

} // namespace notlet
