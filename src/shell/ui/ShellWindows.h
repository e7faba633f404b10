#pragma once

#include <QObject>

#include "platform/StatusItem.h"
#include "platform/WindowSystem.h"
#include "shell/ShellSurfaces.h"
#include "shell/ui/MainWindow.h"
#include "shell/ui/PopoverWindow.h"

namespace notlet {

/// The shell's surfaces as windows of the desktop.
class ShellWindows final : public ShellSurfaces {
 public:
  /// All must outlive this object.
  struct Surroundings {
    MainWindow& mainWindow;
    PopoverWindow& popover;
    const StatusItem& statusItem;
    WindowSystem& windowSystem;
  };

  explicit ShellWindows(const Surroundings& surroundings) : m_surroundings(surroundings) {}

  [[nodiscard]] bool isPopoverShown() const override { return m_surroundings.popover.isVisible(); }
  void showPopover(bool itemWasClicked) override;
  void activatePopover() override { m_surroundings.popover.activate(); }
  void closePopover() override { m_surroundings.popover.dismiss(); }
  void activateMainWindow() override;
  void hideMainWindow() override { m_surroundings.mainWindow.hide(); }
  [[nodiscard]] bool isMainWindowShown() const override { return m_surroundings.mainWindow.isVisible(); }

 private:
  Surroundings m_surroundings;
};

} // namespace notlet
