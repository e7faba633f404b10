#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "commands/NotificationCenter.h"
#include "platform/FocusedControl.h"
#include "platform/KeyPress.h"
#include "platform/SteadyClock.h"
#include "shortcuts/MacKeyCombination.h"
#include "shortcuts/MacShortcutSettings.h"

namespace notlet {

/// Whether a key's name is one code point that may be part of a hashtag: a letter, mark or digit, "-" or "_".
[[nodiscard]] bool isHashtagSearchCharacter(std::string_view keyName);

/// Turns the keys pressed in the program's windows into commands.
///
/// The leader arms the keyboard for the time that the shortcuts say; the next key then chooses a command.
/// Other keys act directly, depending on what the screens show, which they keep current in the five flags.
/// Whatever is not consumed belongs to the focused control. Main thread only.
class MacShortcutCoordinator {
 public:
  /// All must outlive the coordinator.
  struct Surroundings {
    NotificationCenter& notificationCenter;
    const MacShortcutSettings& settings;
    const SteadyClock& clock;
    FocusedControl& focusedControl;
  };

  explicit MacShortcutCoordinator(const Surroundings& surroundings) : m_surroundings(surroundings) {}

  /// The main window shows the archive.
  bool archiveActive = false;
  /// A notlet in the archive is being edited in place.
  bool archiveEditingActive = false;
  /// The archive's search field has the keyboard focus.
  bool archiveSearchFieldActive = false;
  /// The keyboard walks the archive's hashtags instead of its notlets.
  bool archiveHashtagNavigationActive = false;
  /// The floating capture panel is expanded.
  bool floatingCaptureExpanded = false;

  /// True when the key was consumed and must reach no control.
  ///
  /// Where nothing is made of what a key types, it also counts without the shift that its sign needs, and as
  /// what it types on a Latin layout: on others nobody could press "control+s" and then "j". A held key goes
  /// on doing what it did when it was pressed, or does nothing: what it opened is not for it.
  bool handle(const KeyPress& press);
  /// The same for a key of this name. `modifierRawValue` may hold bits outside KeyModifier::mask.
  bool handle(std::string_view key, std::uint32_t modifierRawValue);

 private:
  /// A key's name and the modifiers that count.
  struct Key {
    std::string_view name;
    std::uint32_t modifiers = 0;

    [[nodiscard]] bool isPlain(std::string_view other) const { return modifiers == 0 && name == other; }
    /// Whether a value of the shortcut file names this key.
    [[nodiscard]] bool isNamed(std::string_view configured) const;
  };

  /// What is made of a key.
  struct Action {
    enum class Kind { pass, post, clearFocus, focusSearch, arm };

    Kind kind = Kind::pass;
    /// What to post.
    CommandName command{};
    CommandObject object = std::nullopt;
    /// The leader goes on waiting.
    bool keepsLeader = false;

    [[nodiscard]] bool isTaken() const { return kind != Kind::pass; }
    [[nodiscard]] bool doesWhat(const Action& other) const {
      return kind == other.kind && command == other.command && object == other.object;
    }
  };

  [[nodiscard]] Action actionOf(const KeyPress& press) const;
  [[nodiscard]] Action actionOf(const Key& key) const;
  [[nodiscard]] static Action post(CommandName name, CommandObject object = std::nullopt) {
    return {Action::Kind::post, name, std::move(object)};
  }
  bool perform(const Action& action);

  [[nodiscard]] const MacShortcutConfig& config() const { return m_surroundings.settings.config(); }
  [[nodiscard]] bool isLeader(const Key& key) const;
  [[nodiscard]] bool isArmed() const;
  [[nodiscard]] bool isForButton(const Key& key) const;
  [[nodiscard]] bool showsInArchive(bool flag) const;
  [[nodiscard]] bool showsMainWindow() const;

  // The rules, each of which may take a key.
  [[nodiscard]] Action leaveCapture(const Key& key) const;
  [[nodiscard]] Action endEditing(const Key& key) const;
  [[nodiscard]] Action leaveTextInput(const Key& key) const;
  [[nodiscard]] Action moveFromSearchField(const Key& key) const;
  [[nodiscard]] Action arm(const Key& key) const;
  [[nodiscard]] Action chooseCommand(const Key& key) const;
  [[nodiscard]] Action startSearch(const Key& key) const;
  [[nodiscard]] Action useHashtags(const Key& key) const;
  [[nodiscard]] Action useArchive(const Key& key) const;

  Surroundings m_surroundings;
  std::optional<SteadyClock::Time> m_leaderDeadline;
  /// What was made of the last key that was pressed.
  Action m_lastPress;
};

} // namespace notlet
