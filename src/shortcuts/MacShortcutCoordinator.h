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
  /// On a layout without Latin letters nobody could press "control+s" and then "j". There the leader, and the
  /// key that follows it, are also found by what the key types on a Latin layout.
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

  [[nodiscard]] bool isMeantInLatin(const Key& typed, const Key& latin) const;
  [[nodiscard]] bool isLeader(const Key& key) const;
  [[nodiscard]] bool isArmed() const;
  [[nodiscard]] std::optional<CommandName> commandAfterLeader(const Key& key) const;

  [[nodiscard]] bool showsInArchive(bool flag) const;
  bool leaveCapture(const Key& key);
  bool endEditing(const Key& key);
  bool leaveTextInput(const Key& key);
  bool moveFromSearchField(const Key& key);
  bool arm(const Key& key);
  bool chooseCommand(const Key& key);
  bool startSearch(const Key& key);
  bool useHashtags(const Key& key);
  bool useArchive(const Key& key);

  bool consume(CommandName name, const CommandObject& object = std::nullopt);
  bool consumeAndDisarm(CommandName name);

  Surroundings m_surroundings;
  std::optional<SteadyClock::Time> m_leaderDeadline;
};

} // namespace notlet
