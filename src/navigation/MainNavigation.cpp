#include "navigation/MainNavigation.h"

namespace notlet {

MainNavigation::MainNavigation(NotificationCenter& notificationCenter, MacShortcutCoordinator& coordinator,
                               QObject* parent)
    : QObject(parent), m_notificationCenter(notificationCenter), m_coordinator(coordinator) {
  observe(CommandName::showMacCapture, MacSection::notlet);
  observe(CommandName::openMacNotlet, MacSection::notlet, CommandName::focusMacNotletInput);
  observe(CommandName::openMacArchive, MacSection::archive);
  observe(CommandName::focusMacArchiveSearch, MacSection::archive, CommandName::focusMacArchiveSearchField);
  publishFlag();
}

MainNavigation::~MainNavigation() {
  m_coordinator.archiveActive = false;
}

// The section that was just selected is there to observe the follow-up. A turn later keys would have been
// typed that are meant for it.
void MainNavigation::observe(CommandName command, MacSection section, std::optional<CommandName> followUp) {
  m_notificationCenter.observe(command, this, [this, section, followUp](const CommandObject&) {
    select(section);
    if (followUp)
      m_notificationCenter.post(*followUp);
  });
}

void MainNavigation::select(std::optional<MacSection> section) {
  if (m_state.selection == section)
    return;
  m_state.selection = section;
  publishFlag();
  Q_EMIT changed();
}

void MainNavigation::switchToBubbleMode() {
  m_notificationCenter.post(CommandName::enterMacFloatingMode);
}

void MainNavigation::publishFlag() {
  m_coordinator.archiveActive = m_state.selection == MacSection::archive;
}

} // namespace notlet
