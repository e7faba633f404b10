#pragma once

#include <optional>

#include "shell/ui/RoundedWindow.h"

namespace notlet {

/// A window that stands beside the status item for as long as the user is busy with it.
///
/// It closes on Escape, when another window takes the keyboard and on a press of the mouse elsewhere, but
/// stays while a dialog or menu of its own is up.
class PopoverWindow : public RoundedWindow {
  Q_OBJECT

 public:
  enum class CloseReason {
    /// By close() or by means of the desktop.
    asked,
    escape,
    deactivated,
    pressedElsewhere,
  };
  Q_ENUM(CloseReason)

  /// Takes the content, whose minimum size is the window's size, as its child. The others must outlive the
  /// window.
  PopoverWindow(AppSettings& settings, WindowSystem& windowSystem, QWidget* content);

  /// Takes on the size of the content, which has changed.
  void fit();
  /// Shows the window where it stands and gives it the keyboard.
  void open();
  /// Puts the window's upper left corner at the position, in Qt's screen coordinates. What a press at the
  /// anchor means is for whoever is there to say: it does not close the window.
  void standAt(const QPoint& position, const QRect& anchor = {});
  /// Gives the keyboard to the window, which is shown already.
  void activate();
  void dismiss() { closeBecause(CloseReason::asked); }

 Q_SIGNALS:
  /// The window was shown and is not any more.
  void closed(notlet::PopoverWindow::CloseReason reason);

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void handlePress(const QPoint& position);
  void closeBecause(CloseReason reason);
  /// Whether the user is busy with something that belongs to the window.
  [[nodiscard]] bool hasWindowOfItsOwn() const;

  QRect m_anchor;
  QWidget* m_content;
  /// A dialog of the window's own is up.
  bool m_isBlocked = false;
  /// Set while the window is on its way out.
  std::optional<CloseReason> m_reason;
};

} // namespace notlet
