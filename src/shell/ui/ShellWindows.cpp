#include "shell/ui/ShellWindows.h"

#include <QCursor>

#include "shell/ui/PlacementScreens.h"

namespace notlet {

ShellWindows::ShellWindows(const Surroundings& surroundings, QObject* parent)
    : QObject(parent), m_surroundings(surroundings) {
  connect(&m_surroundings.screens, &Screens::changed, this, &ShellWindows::followScreens);
}

void ShellWindows::showPopover(bool itemWasClicked) {
  m_popover = &m_surroundings.popover();
  m_anchor = {m_surroundings.statusItem.area(), QCursor::pos(), itemWasClicked};
  m_popover->showAt(popoverPlace());
}

QPoint ShellWindows::popoverPlace() const {
  return popoverFrame(m_popover->size(), m_anchor, placementScreens()).topLeft();
}

void ShellWindows::followScreens() {
  m_surroundings.mainWindow.keepWithinReach();
  if (!isPopoverShown())
    return;
  m_anchor.statusItem = m_surroundings.statusItem.area();
  m_popover->move(popoverPlace());
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
