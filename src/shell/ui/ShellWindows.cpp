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
  placePopover();
  m_popover->open();
}

void ShellWindows::placePopover() {
  const QRect frame = popoverFrame(m_popover->body().size(), m_anchor, placementScreens());
  m_popover->standAt(frame.topLeft(), m_anchor.statusItem.value_or(QRect()));
}

void ShellWindows::followScreens() {
  m_surroundings.mainWindow.keepWithinReach();
  if (!isPopoverShown())
    return;
  m_anchor.statusItem = m_surroundings.statusItem.area();
  placePopover();
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
