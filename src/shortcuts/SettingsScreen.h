#pragma once

#include <QObject>

#include "platform/FocusedControl.h"
#include "platform/KeyPress.h"
#include "shortcuts/ShortcutSettingsDraft.h"

namespace notlet {

/// The settings window as a whole: whether it is shown, which of its tabs, and the keys that it takes before
/// the shortcuts do.
class SettingsScreen : public QObject {
  Q_OBJECT

 public:
  enum class Tab { themes, shortcuts };

  struct State {
    bool isShown = false;
    Tab tab = Tab::themes;
    /// The window has the keyboard.
    bool isActive = false;
    /// It is to be closed, and shortcuts would be lost that are not saved.
    bool asksToDiscard = false;

    bool operator==(const State&) const = default;
  };

  /// Both must outlive the screen.
  SettingsScreen(ShortcutSettingsDraft& draft, const FocusedControl& focusedControl,
                 QObject* parent = nullptr);

  [[nodiscard]] const State& state() const { return m_state; }

  /// Shows the window; when it was not shown, with what the shortcut file holds now.
  void open();
  /// Closes the window, but asks first when something in it is not saved.
  void close();
  void discardAndClose();
  void keepOpen();
  void select(Tab tab);
  void setActive(bool isActive);

  /// True when the key was meant for the settings and must do nothing else: any key while one is being
  /// recorded, and Escape, which closes the window unless shortcuts are not saved.
  bool handle(const KeyPress& press);

 Q_SIGNALS:
  void changed();

 private:
  bool escape();
  void hide();
  void setState(const State& state);

  ShortcutSettingsDraft& m_draft;
  const FocusedControl& m_focusedControl;
  State m_state;
};

} // namespace notlet
