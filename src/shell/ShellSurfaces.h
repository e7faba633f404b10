#pragma once

namespace notlet {

/// The popover and the main window, as the shell commands them.
class ShellSurfaces {
 public:
  virtual ~ShellSurfaces() = default;
  [[nodiscard]] virtual bool isPopoverShown() const = 0;
  /// Shows the popover at the status item and gives it the keyboard. When the item was clicked just now, the
  /// pointer tells where it is on desktops that do not.
  virtual void showPopover(bool itemWasClicked) = 0;
  /// Gives the keyboard to the popover, which is shown already.
  virtual void activatePopover() = 0;
  virtual void closePopover() = 0;
  /// Shows the main window in front of all others and gives it the keyboard.
  virtual void activateMainWindow() = 0;
  virtual void hideMainWindow() = 0;
  [[nodiscard]] virtual bool isMainWindowShown() const = 0;
};

} // namespace notlet
