#pragma once

#include <QObject>
#include <optional>
#include <string>

#include "platform/KeyPress.h"
#include "shortcuts/MacShortcutSettings.h"
#include "shortcuts/ShortcutField.h"

namespace notlet {

/// The shortcuts as they stand in the form of the settings window. Nothing reaches the file or the keyboard
/// before they are saved.
///
/// As long as nothing in the form was changed, it follows the shortcuts in force.
class ShortcutSettingsDraft : public QObject {
  Q_OBJECT

 public:
  static constexpr std::int64_t shortestTimeout = MacShortcutConfig::shortestTimeoutMilliseconds;
  static constexpr std::int64_t longestTimeout = 5000;
  static constexpr std::int64_t timeoutStep = 100;

  struct State {
    MacShortcutConfig draft;
    /// Those that the program obeys.
    MacShortcutConfig inForce;
    /// The field that the next key goes to.
    std::optional<ShortcutField> recording;
    /// Why the last key was not taken (UTF-8).
    std::string recordingProblem;
    /// The message that all parts of the keyboard share (UTF-8).
    std::optional<std::string> alert;

    [[nodiscard]] bool isUnsaved() const { return draft != inForce; }
    [[nodiscard]] bool canRaiseTimeout() const;
    [[nodiscard]] bool canLowerTimeout() const;

    bool operator==(const State&) const = default;
  };

  /// The settings must outlive the draft.
  explicit ShortcutSettingsDraft(MacShortcutSettings& settings, QObject* parent = nullptr);

  [[nodiscard]] const State& state() const { return m_state; }

  void setText(ShortcutField field, std::string text);
  void raiseTimeout();
  void lowerTimeout();

  void save();
  /// Reads the file again, and gives up what was changed in the form.
  void reload();
  void restoreDefaults();
  void openConfigFile();
  void dismissAlert();

  /// Asks for the field's key, or ends that when it is the one that is asked for.
  void toggleRecording(ShortcutField field);
  void stopRecording();
  /// Takes the key into the field that is being recorded; Escape ends the recording. True when the key was
  /// meant for this, and must do nothing else, also while it is held afterwards.
  bool record(const KeyPress& press);

 Q_SIGNALS:
  void changed();

 private:
  void follow();
  void takeInForce();
  template<typename Change>
  void change(const Change& apply);

  MacShortcutSettings& m_settings;
  State m_state;
  /// The key pressed last was for a recording.
  bool m_isRecordedKeyHeld = false;
};

} // namespace notlet
