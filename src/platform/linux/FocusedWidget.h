#pragma once

#include <QPointer>
#include <QWidget>

#include "platform/FocusedControl.h"

namespace notlet {

/// The widget of the active window that has the keyboard focus. Those that take text are line edits, text
/// edits and what is made of them, such as spin boxes.
class FocusedWidget final : public FocusedControl {
 public:
  [[nodiscard]] bool isTextInputFocused() const override;
  [[nodiscard]] bool isInMainWindow() const override;
  void clearFocus() override;

  /// Until it is told, every window counts as the main one.
  void setMainWindow(const QWidget* window) { m_mainWindow = window; }

 private:
  QPointer<const QWidget> m_mainWindow;
};

} // namespace notlet
