#include "shortcuts/MacShortcutCoordinator.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <span>
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
  const Action action = actionOf(press);
  if (press.isRepeat && !action.doesWhat(m_lastPress))
    return m_lastPress.isTaken();
  m_lastPress = action;
  return perform(action);
}

bool MacShortcutCoordinator::handle(std::string_view key, std::uint32_t modifierRawValue) {
  const Action action = actionOf(Key{key, modifierRawValue & KeyModifier::mask});
  m_lastPress = action;
  return perform(action);
}

bool MacShortcutCoordinator::perform(const Action& action) {
  if (!action.keepsLeader)
    m_leaderDeadline.reset();
  switch (action.kind) {
  case Action::Kind::pass:
    break;
  case Action::Kind::post:
    m_surroundings.notificationCenter.post(action.command, action.object);
    break;
  case Action::Kind::clearFocus:
    m_surroundings.focusedControl.clearFocus();
    break;
  case Action::Kind::focusSearch:
    m_surroundings.focusedControl.focusOwnSearch();
    break;
  case Action::Kind::arm:
    m_leaderDeadline = m_surroundings.clock.now() + waitFor(config().leaderTimeoutMilliseconds);
    break;
  }
  return action.isTaken();
}

// A plain leader is looked for in what is really typed only: otherwise a letter could not be typed any more.
MacShortcutCoordinator::Action MacShortcutCoordinator::actionOf(const KeyPress& press) const {
  const std::uint32_t modifiers = press.modifiers & KeyModifier::mask;
  const std::string typed = macKeyName(press.keyCode, press.characters);
  Action action = actionOf(Key{typed, modifiers});
  if (!action.isTaken() && modifiers == KeyModifier::shift && isTypedWithShift(typed))
    action = actionOf(Key{typed, 0});
  const std::string latin = macKeyName(press.keyCode, press.latinCharacters);
  const Key meant{latin, modifiers};
  if (!action.isTaken() && latin != typed && (isChord(modifiers) || !isLeader(meant)))
    action = actionOf(meant);
  return action;
}

// The order of the rules decides: the first one that takes the key ends it. The settings window is not one
// from which the others are led.
MacShortcutCoordinator::Action MacShortcutCoordinator::actionOf(const Key& key) const {
  using Rules = std::span<Action (MacShortcutCoordinator::* const)(const Key&) const>;
  using Coordinator = MacShortcutCoordinator;
  constexpr static std::array first{&Coordinator::leaveCapture, &Coordinator::endEditing,
                                    &Coordinator::leaveTextInput, &Coordinator::moveFromSearchField,
                                    &Coordinator::arm};
  constexpr static std::array afterLeader{&Coordinator::chooseCommand};
  constexpr static std::array direct{&Coordinator::startSearch, &Coordinator::useArchive};
  constexpr static std::array inSettings{&Coordinator::leaveTextInput, &Coordinator::startSearch};
  const auto firstTaken = [&](Rules rules) {
    for (const auto rule : rules) {
      if (Action action = (this->*rule)(key); action.isTaken())
        return action;
    }
    return Action{};
  };
  if (m_surroundings.focusedControl.window() == FocusedControl::Window::settings)
    return firstTaken(inSettings);
  const Action action = firstTaken(first);
  return action.isTaken() ? action : firstTaken(isArmed() ? Rules(afterLeader) : Rules(direct));
}

bool MacShortcutCoordinator::isLeader(const Key& key) const {
  const auto leader = MacKeyCombination::parse(config().leader);
  return leader && leader->matches(key.name, key.modifiers);
}

bool MacShortcutCoordinator::isArmed() const {
  return m_leaderDeadline && *m_leaderDeadline >= m_surroundings.clock.now();
}

bool MacShortcutCoordinator::isForButton(const Key& key) const {
  return (key.name == "return" || key.name == " ") && m_surroundings.focusedControl.isButtonFocused();
}

/// Whether what the main window is told is seen: behind other windows nobody would know where a key went. The
/// floating panel gives way to it.
bool MacShortcutCoordinator::showsMainWindow() const {
  using Window = FocusedControl::Window;
  const Window window = m_surroundings.focusedControl.window();
  return window == Window::main || (window == Window::other && floatingCaptureExpanded);
}

/// A key typed into the popover must not save, delete or walk what stands in the main window behind it.
bool MacShortcutCoordinator::showsInArchive(bool flag) const {
  return flag && m_surroundings.focusedControl.window() == FocusedControl::Window::main;
}

MacShortcutCoordinator::Action MacShortcutCoordinator::leaveCapture(const Key& key) const {
  if (!floatingCaptureExpanded || key.name != "escape")
    return {};
  return post(CommandName::collapseMacFloatingCapture);
}

MacShortcutCoordinator::Action MacShortcutCoordinator::endEditing(const Key& key) const {
  if (!showsInArchive(archiveEditingActive))
    return {};
  if (key.name == "escape")
    return post(CommandName::cancelEditingMacNotlet);
  // An editor may stay open, even hidden by a filter, while the keyboard is elsewhere in the archive.
  const bool isAtHashtags =
      archiveHashtagNavigationActive && !m_surroundings.focusedControl.isTextInputFocused();
  if (key.isPlain("return") && !isForButton(key) && !archiveSearchFieldActive && !isAtHashtags)
    return post(CommandName::saveEditingMacNotlet);
  return {};
}

MacShortcutCoordinator::Action MacShortcutCoordinator::leaveTextInput(const Key& key) const {
  if (key.name != "escape")
    return {};
  if (showsInArchive(archiveActive && archiveSearchFieldActive))
    return post(CommandName::clearMacHashtagSearch);
  if (m_surroundings.focusedControl.isTextInputFocused())
    return {Action::Kind::clearFocus};
  return {};
}

MacShortcutCoordinator::Action MacShortcutCoordinator::moveFromSearchField(const Key& key) const {
  if (!showsInArchive(archiveActive && archiveSearchFieldActive))
    return {};
  if (key.isPlain("down"))
    return {Action::Kind::post, CommandName::selectNextMacNotlet, std::nullopt, true};
  if (key.isPlain("up"))
    return {Action::Kind::post, CommandName::selectPreviousMacNotlet, std::nullopt, true};
  return {};
}

MacShortcutCoordinator::Action MacShortcutCoordinator::arm(const Key& key) const {
  return {isLeader(key) ? Action::Kind::arm : Action::Kind::pass};
}

MacShortcutCoordinator::Action MacShortcutCoordinator::chooseCommand(const Key& key) const {
  if (key.isNamed(config().commands.notlet))
    return post(CommandName::openMacNotlet);
  if (key.isNamed(config().commands.archive))
    return post(CommandName::openMacArchive);
  return {};
}

MacShortcutCoordinator::Action MacShortcutCoordinator::startSearch(const Key& key) const {
  const FocusedControl& focused = m_surroundings.focusedControl;
  if (key.modifiers != 0 || !key.isNamed(config().commands.search) || focused.isTextInputFocused())
    return {};
  if (focused.hasOwnSearch())
    return {Action::Kind::focusSearch};
  if (!showsMainWindow())
    return {};
  return post(CommandName::focusMacArchiveSearch);
}

MacShortcutCoordinator::Action MacShortcutCoordinator::useArchive(const Key& key) const {
  const bool isBesideEditor = archiveEditingActive && m_surroundings.focusedControl.isButtonFocused();
  if (!showsInArchive(archiveActive) || key.modifiers != 0 || isForButton(key) || isBesideEditor ||
      m_surroundings.focusedControl.isTextInputFocused())
    return {};
  if (archiveHashtagNavigationActive) {
    if (Action action = useHashtags(key); action.isTaken())
      return action;
  }
  if (key.isNamed(config().commands.edit))
    return post(CommandName::editSelectedMacNotlet);
  if (key.isNamed(config().commands.remove))
    return post(CommandName::deleteSelectedMacNotlet);
  const MacShortcutConfig::ArchiveNavigation& navigation = config().archiveNavigation;
  if (key.isNamed(navigation.next) || key.isNamed(navigation.nextAlternate))
    return post(CommandName::selectNextMacNotlet);
  if (key.isNamed(navigation.previous) || key.isNamed(navigation.previousAlternate))
    return post(CommandName::selectPreviousMacNotlet);
  return {};
}

MacShortcutCoordinator::Action MacShortcutCoordinator::useHashtags(const Key& key) const {
  if (key.name == "right")
    return post(CommandName::selectNextMacHashtag);
  if (key.name == "left")
    return post(CommandName::selectPreviousMacHashtag);
  if (key.name == "return" || key.name == " ")
    return post(CommandName::activateSelectedMacHashtag);
  if (key.name == "escape")
    return post(CommandName::clearMacHashtagSearch);
  if (key.name == "backspace" || isHashtagSearchCharacter(key.name))
    return post(CommandName::searchMacHashtags, std::string(key.name));
  return {};
}
} // namespace notlet
