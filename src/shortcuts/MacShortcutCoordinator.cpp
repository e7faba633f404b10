#include "shortcuts/MacShortcutCoordinator.h"

#include <algorithm>
#include <chrono>
#include <unicode/uchar.h>

#include "core/Text.h"

namespace notlet {

namespace {

/// Times from the shortcut file may be of any size; this much can be added to any time.
constexpr std::int64_t longestWait = std::chrono::milliseconds(std::chrono::years(100)).count();

std::chrono::milliseconds waitFor(std::int64_t milliseconds) {
  return std::chrono::milliseconds(std::clamp(milliseconds, -longestWait, longestWait));
}

/// Whether these modifiers make a chord, which types nothing. Shift alone does not.
bool isChord(std::uint32_t modifiers) {
  return (modifiers & KeyModifier::mask & ~KeyModifier::shift) != 0;
}

} // namespace

bool isHashtagSearchCharacter(std::string_view keyName) {
  if (keyName.empty())
    return false;
  const CodePoint character = firstCodePoint(keyName);
  if (character.length != keyName.size())
    return false;
  constexpr std::uint32_t categories = U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK;
  return character.value == U'-' || character.value == U'_' ||
         (U_GET_GC_MASK(static_cast<UChar32>(character.value)) & categories) != 0;
}

bool MacShortcutCoordinator::Key::isNamed(std::string_view configured) const {
  return name == lowercased(configured);
}

bool MacShortcutCoordinator::handle(const KeyPress& press) {
  const std::string typed = macKeyName(press.keyCode, press.characters);
  const std::string latin = macKeyName(press.keyCode, press.latinCharacters);
  const std::uint32_t modifiers = press.modifiers & KeyModifier::mask;
  return handle(isMeantInLatin({typed, modifiers}, {latin, modifiers}) ? latin : typed, modifiers);
}

// The order of the rules decides: the first one that takes the key ends it.
bool MacShortcutCoordinator::handle(std::string_view key, std::uint32_t modifierRawValue) {
  const Key pressed{key, modifierRawValue & KeyModifier::mask};
  if (leaveCapture(pressed) || endEditing(pressed) || leaveTextInput(pressed) ||
      moveFromSearchField(pressed) || arm(pressed))
    return true;
  if (isArmed())
    return chooseCommand(pressed);
  m_leaderDeadline.reset();
  return startSearch(pressed) || useArchive(pressed);
}

bool MacShortcutCoordinator::isMeantInLatin(const Key& typed, const Key& latin) const {
  if (latin.name == typed.name || isLeader(typed))
    return false;
  if (isChord(latin.modifiers) && isLeader(latin))
    return true;
  return isArmed() && !commandAfterLeader(typed) && commandAfterLeader(latin);
}

bool MacShortcutCoordinator::isLeader(const Key& key) const {
  const auto leader = MacKeyCombination::parse(m_surroundings.settings.config().leader);
  return leader && leader->matches(key.name, key.modifiers);
}

bool MacShortcutCoordinator::isArmed() const {
  return m_leaderDeadline && *m_leaderDeadline >= m_surroundings.clock.now();
}

std::optional<CommandName> MacShortcutCoordinator::commandAfterLeader(const Key& key) const {
  const MacShortcutConfig::Commands& commands = m_surroundings.settings.config().commands;
  if (key.isNamed(commands.notlet))
    return CommandName::openMacNotlet;
  if (key.isNamed(commands.archive))
    return CommandName::openMacArchive;
  return std::nullopt;
}

/// A key typed into the popover must not save, delete or walk what stands in the main window behind it.
bool MacShortcutCoordinator::showsInArchive(bool flag) const {
  return flag && m_surroundings.focusedControl.isInMainWindow();
}

bool MacShortcutCoordinator::leaveCapture(const Key& key) {
  return floatingCaptureExpanded && key.name == "escape" &&
         consumeAndDisarm(CommandName::collapseMacFloatingCapture);
}

bool MacShortcutCoordinator::endEditing(const Key& key) {
  if (!showsInArchive(archiveEditingActive))
    return false;
  if (key.name == "escape")
    return consumeAndDisarm(CommandName::cancelEditingMacNotlet);
  return key.isPlain("return") && consumeAndDisarm(CommandName::saveEditingMacNotlet);
}

bool MacShortcutCoordinator::leaveTextInput(const Key& key) {
  if (key.name != "escape")
    return false;
  if (showsInArchive(archiveActive && archiveSearchFieldActive))
    return consumeAndDisarm(CommandName::clearMacHashtagSearch);
  if (!m_surroundings.focusedControl.isTextInputFocused())
    return false;
  m_leaderDeadline.reset();
  m_surroundings.focusedControl.clearFocus();
  return true;
}

bool MacShortcutCoordinator::moveFromSearchField(const Key& key) {
  if (!showsInArchive(archiveActive && archiveSearchFieldActive))
    return false;
  return (key.isPlain("down") && consume(CommandName::selectNextMacNotlet)) ||
         (key.isPlain("up") && consume(CommandName::selectPreviousMacNotlet));
}

bool MacShortcutCoordinator::arm(const Key& key) {
  if (!isLeader(key))
    return false;
  m_leaderDeadline =
      m_surroundings.clock.now() + waitFor(m_surroundings.settings.config().leaderTimeoutMilliseconds);
  return true;
}

bool MacShortcutCoordinator::chooseCommand(const Key& key) {
  m_leaderDeadline.reset();
  const auto command = commandAfterLeader(key);
  return command && consume(*command);
}

bool MacShortcutCoordinator::startSearch(const Key& key) {
  return key.modifiers == 0 && key.isNamed(m_surroundings.settings.config().commands.search) &&
         !m_surroundings.focusedControl.isTextInputFocused() && consume(CommandName::focusMacArchiveSearch);
}

bool MacShortcutCoordinator::useArchive(const Key& key) {
  if (!showsInArchive(archiveActive) || key.modifiers != 0 ||
      m_surroundings.focusedControl.isTextInputFocused())
    return false;
  if (archiveHashtagNavigationActive && useHashtags(key))
    return true;
  const MacShortcutConfig& config = m_surroundings.settings.config();
  if (key.isNamed(config.commands.edit))
    return consume(CommandName::editSelectedMacNotlet);
  if (key.isNamed(config.commands.remove))
    return consume(CommandName::deleteSelectedMacNotlet);
  const MacShortcutConfig::ArchiveNavigation& navigation = config.archiveNavigation;
  if (key.isNamed(navigation.next) || key.isNamed(navigation.nextAlternate))
    return consume(CommandName::selectNextMacNotlet);
  if (key.isNamed(navigation.previous) || key.isNamed(navigation.previousAlternate))
    return consume(CommandName::selectPreviousMacNotlet);
  return false;
}

bool MacShortcutCoordinator::useHashtags(const Key& key) {
  if (key.name == "right")
    return consume(CommandName::selectNextMacHashtag);
  if (key.name == "left")
    return consume(CommandName::selectPreviousMacHashtag);
  if (key.name == "return" || key.name == " ")
    return consume(CommandName::activateSelectedMacHashtag);
  if (key.name == "escape")
    return consume(CommandName::clearMacHashtagSearch);
  if (key.name == "backspace" || isHashtagSearchCharacter(key.name))
    return consume(CommandName::searchMacHashtags, std::string(key.name));
  return false;
}

bool MacShortcutCoordinator::consume(CommandName name, const CommandObject& object) {
  m_surroundings.notificationCenter.post(name, object);
  return true;
}

bool MacShortcutCoordinator::consumeAndDisarm(CommandName name) {
  m_leaderDeadline.reset();
  return consume(name);
}

} // namespace notlet
