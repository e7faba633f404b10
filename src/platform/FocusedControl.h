#pragma once

namespace notlet {

/// The control that receives what is typed.
class FocusedControl {
 public:
  /// The program's windows, as far as keys mean something else in them.
  enum class Window { main, settings, other };

  virtual ~FocusedControl() = default;
  /// Whether the active window has a focused control that takes text.
  [[nodiscard]] virtual bool isTextInputFocused() const = 0;
  /// Whether it is a button, which answers Return and Space itself.
  [[nodiscard]] virtual bool isButtonFocused() const = 0;
  /// The window that it is in.
  [[nodiscard]] virtual Window window() const = 0;
  /// Takes the keyboard focus away from the active window's focused control.
  virtual void clearFocus() = 0;

  /// Whether the active window shows a screen with a search of its own.
  [[nodiscard]] virtual bool hasOwnSearch() const = 0;
  /// Gives that the keyboard.
  virtual void focusOwnSearch() = 0;
};

} // namespace notlet
