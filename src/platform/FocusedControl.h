#pragma once

namespace notlet {

/// The control that receives what is typed.
class FocusedControl {
 public:
  virtual ~FocusedControl() = default;
  /// Whether the active window has a focused control that takes text.
  [[nodiscard]] virtual bool isTextInputFocused() const = 0;
  /// Whether it is in the main window, and not in another of the program's windows.
  [[nodiscard]] virtual bool isInMainWindow() const = 0;
  /// Takes the keyboard focus away from the active window's focused control.
  virtual void clearFocus() = 0;
};

} // namespace notlet
