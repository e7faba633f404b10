#pragma once

#include <functional>

#include "platform/Screens.h"
#include "platform/StatusItem.h"
#include "platform/WindowSystem.h"
#include "shell/ShellSurfaces.h"
#include "shell/WindowPlacement.h"
#include "shell/ui/MainWindow.h"
#include "shell/ui/PopoverWindow.h"

namespace notlet {

/// The shell's surfaces as windows of the desktop. They stay within the user's reach when screens go.
class ShellWindows final : public QObject, public ShellSurfaces {
  Q_OBJECT

 public:
  /// All must outlive this object.
  struct Surroundings {
    MainWindow& mainWindow;
    /// Makes the popover the first time.
    std::function<PopoverWindow&()> popover;
    const StatusItem& statusItem;
    WindowSystem& windowSystem;
    const Screens& screens;
  };

  explicit ShellWindows(const Surroundings& surroundings, QObject* parent = nullptr);

  [[nodiscard]] bool isPopoverShown() const override { return m_popover && m_popover->isVisible(); }
  void showPopover(bool itemWasClicked) override;
  void activatePopover() override;
  void closePopover() override;
  void activateMainWindow() override;
  void hideMainWindow() override { m_surroundings.mainWindow.hide(); }
  [[nodiscard]] bool isMainWindowShown() const override { return m_surroundings.mainWindow.isVisible(); }

 private:
  void followScreens();
  void placePopover();

  Surroundings m_surroundings;
  /// Null until it is first shown.
  PopoverWindow* m_popover = nullptr;
  /// What it was last shown for.
  PopoverAnchor m_anchor;
};

} // namespace notlet
