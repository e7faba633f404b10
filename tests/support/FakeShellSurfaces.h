#pragma once

#include "shell/ShellSurfaces.h"

namespace notlet {

/// Popover and main window without windows.
class FakeShellSurfaces final : public ShellSurfaces {
 public:
  enum class Surface { none, popover, mainWindow };

  [[nodiscard]] bool isPopoverShown() const override { return popoverShown; }
  void showPopover(bool itemWasClicked) override {
    shownForClick = itemWasClicked;
    popoverShown = true;
    active = Surface::popover;
  }
  void activatePopover() override {
    if (popoverShown)
      active = Surface::popover;
  }
  void closePopover() override { hide(popoverShown, Surface::popover); }
  void activateMainWindow() override {
    mainWindowShown = true;
    active = Surface::mainWindow;
  }
  void hideMainWindow() override { hide(mainWindowShown, Surface::mainWindow); }
  [[nodiscard]] bool isMainWindowShown() const override { return mainWindowShown; }

  bool popoverShown = false;
  bool mainWindowShown = false;
  bool shownForClick = false;
  /// Which of them has the keyboard.
  Surface active = Surface::none;

 private:
  void hide(bool& shown, Surface surface) {
    shown = false;
    if (active == surface)
      active = Surface::none;
  }
};

} // namespace notlet
