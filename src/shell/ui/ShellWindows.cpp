#include "shell/ui/ShellWindows.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <vector>

#include "shell/PopoverPlacement.h"

namespace notlet {

void ShellWindows::showPopover(bool itemWasClicked) {
  std::vector<PopoverScreen> screens;
  for (const QScreen* screen : QGuiApplication::screens())
    screens.push_back({screen->geometry(), screen->availableGeometry()});
  const PopoverAnchor anchor{m_surroundings.statusItem.area(), QCursor::pos(), itemWasClicked};
  m_popover = &m_surroundings.popover();
  m_popover->showAt(popoverFrame(m_popover->size(), anchor, screens).topLeft());
}

void ShellWindows::activatePopover() {
  if (m_popover)
    m_popover->activate();
}

void ShellWindows::closePopover() {
  if (m_popover)
    m_popover->dismiss();
}

void ShellWindows::activateMainWindow() {
  m_surroundings.mainWindow.reveal();
  m_surroundings.windowSystem.activate(m_surroundings.mainWindow.winId());
}

} // namespace notlet
