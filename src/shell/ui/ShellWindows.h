#pragma once

#include <functional>

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
    /// Makes the popover the first time.
    std::function<PopoverWindow&()> popover;
    const StatusItem& statusItem;
    WindowSystem& windowSystem;
  };

  explicit ShellWindows(const Surroundings& surroundings) : m_surroundings(surroundings) {}

  [[nodiscard]] bool isPopoverShown() const override { return m_popover && m_popover->isVisible(); }
  void showPopover(bool itemWasClicked) override;
  void activatePopover() override;
  void closePopover() override;
  void activateMainWindow() override;
  void hideMainWindow() override { m_surroundings.mainWindow.hide(); }
  [[nodiscard]] bool isMainWindowShown() const override { return m_surroundings.mainWindow.isVisible(); }

 private:
  Surroundings m_surroundings;
  /// Null until it is first shown.
  PopoverWindow* m_popover = nullptr;
};

} // namespace notlet
