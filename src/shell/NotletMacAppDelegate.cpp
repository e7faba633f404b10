#include "shell/NotletMacAppDelegate.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace notlet {

namespace {

constexpr std::string_view linkStart = "notlet:";
/// A click on the status item first closes the popover, by taking its activation, and then arrives here.
constexpr std::chrono::milliseconds clickAfterClosing{300};
/// A click sooner than this after another is one with it.
constexpr std::chrono::milliseconds doubleClick{400};

const char* message(GlobalHotKey::Failure failure) {
  switch (failure) {
  case GlobalHotKey::Failure::notInstalled:
    return "Notlet could not install the global Quick Notlet shortcut.";
  case GlobalHotKey::Failure::taken:
    break;
  }
  return "Control-Command-J is already registered by another app.";
}

} // namespace

NotletMacAppDelegate::NotletMacAppDelegate(const Surroundings& surroundings, QObject* parent)
    : QObject(parent), m_surroundings(surroundings) {
  if (m_surroundings.floatingPanelController)
    setFloatingPanelController(*m_surroundings.floatingPanelController);
}

void NotletMacAppDelegate::setFloatingPanelController(MacFloatingPanelController& controller) {
  m_surroundings.floatingPanelController = &controller;
  connect(&controller, &MacFloatingPanelController::mainAppRequested, this,
          &NotletMacAppDelegate::activateMainWindow);
}

void NotletMacAppDelegate::applicationDidFinishLaunching(const std::optional<LaunchRequest>& request) {
  listenToStatusItem();
  configureGlobalQuickNotletHotKey();
  observeCommands();
  if (!request)
    return;
  // The main window would take the keyboard away from the popover, which then closes.
  if (request->kind != LaunchRequest::Kind::capture)
    activateMainWindow();
  if (request->kind != LaunchRequest::Kind::activate)
    handle(*request);
}

void NotletMacAppDelegate::listenToStatusItem() {
  const StatusItem* item = &m_surroundings.statusItem;
  connect(item, &StatusItem::clicked, this, &NotletMacAppDelegate::statusItemClicked);
  connect(item, &StatusItem::shownChanged, this, &NotletMacAppDelegate::followStatusItem);
  connect(item, &StatusItem::quickNotletChosen, this,
          [this] { m_surroundings.notificationCenter.post(CommandName::openGlobalMacQuickNotlet); });
  connect(item, &StatusItem::openChosen, this, &NotletMacAppDelegate::applicationShouldHandleReopen);
  connect(item, &StatusItem::settingsChosen, this, &NotletMacAppDelegate::settingsRequested);
  connect(item, &StatusItem::quitChosen, this, &NotletMacAppDelegate::quitRequested);
}

void NotletMacAppDelegate::configureGlobalQuickNotletHotKey() {
  GlobalHotKey& hotKey = m_surroundings.hotKey;
  connect(&hotKey, &GlobalHotKey::pressed, this,
          [this] { m_surroundings.notificationCenter.post(CommandName::openGlobalMacQuickNotlet); });
  connect(&hotKey, &GlobalHotKey::failed, this, &NotletMacAppDelegate::reportHotKey);
  connect(&hotKey, &GlobalHotKey::installed, this, &NotletMacAppDelegate::hotKeyInstalled);
  connect(&m_surroundings.shortcutSettings, &MacShortcutSettings::changed, this,
          &NotletMacAppDelegate::followMessages);
  m_hasHotKey = true;
  hotKey.install();
}

void NotletMacAppDelegate::reportHotKey(GlobalHotKey::Failure failure) {
  m_hasHotKey = false;
  m_hotKeyMessage = message(failure);
  m_surroundings.shortcutSettings.setErrorMessage(m_hotKeyMessage);
}

void NotletMacAppDelegate::hotKeyInstalled() {
  m_hasHotKey = true;
  const auto told = std::exchange(m_hotKeyMessage, std::nullopt);
  if (told && m_surroundings.shortcutSettings.errorMessage() == told)
    m_surroundings.shortcutSettings.setErrorMessage(std::nullopt);
}

// Another message may have come before this one was read; its turn comes once that is gone.
void NotletMacAppDelegate::followMessages() {
  MacShortcutSettings& settings = m_surroundings.shortcutSettings;
  const auto before = std::exchange(m_toldMessage, settings.errorMessage());
  if (m_toldMessage || before == m_toldMessage)
    return;
  if (before == m_hotKeyMessage)
    m_hotKeyMessage.reset();
  else if (m_hotKeyMessage)
    settings.setErrorMessage(m_hotKeyMessage);
}

void NotletMacAppDelegate::observeCommands() {
  const auto observe = [this](CommandName name, void (NotletMacAppDelegate::*reaction)()) {
    m_surroundings.notificationCenter.observe(
        name, this, [this, reaction](const CommandObject&) { (this->*reaction)(); });
  };
  observe(CommandName::enterMacFloatingMode, &NotletMacAppDelegate::enterFloatingMode);
  observe(CommandName::openGlobalMacQuickNotlet, &NotletMacAppDelegate::openGlobalQuickNotlet);
  observe(CommandName::collapseMacFloatingCapture, &NotletMacAppDelegate::collapseFloatingCapture);
  for (const CommandName name :
       {CommandName::openMacNotlet, CommandName::openMacArchive, CommandName::focusMacArchiveSearch})
    observe(name, &NotletMacAppDelegate::revealMainAppForNavigation);
}

void NotletMacAppDelegate::applicationDidBecomeActive() {
  m_surroundings.hotKey.retry();
  MacShortcutSettings& settings = m_surroundings.shortcutSettings;
  const auto unread = m_hotKeyMessage;
  settings.reload();
  // A file without faults mends no hot key, and the message comes before the user has seen a window.
  m_hotKeyMessage = unread;
  if (unread && !settings.errorMessage())
    settings.setErrorMessage(unread);
}

void NotletMacAppDelegate::applicationWillTerminate() {
  m_hasHotKey = false;
  m_surroundings.hotKey.uninstall();
}

void NotletMacAppDelegate::applicationShouldHandleReopen() {
  if (m_surroundings.floatingPanelController)
    m_surroundings.floatingPanelController->exitFloatingMode();
  activateMainWindow();
}

void NotletMacAppDelegate::applicationOpen(std::span<const std::string> urls) {
  if (std::ranges::none_of(urls, [](const std::string& url) { return url.starts_with(linkStart); }))
    return;
  if (isFloatingMode())
    return m_surroundings.floatingPanelController->expandCapture();
  m_surroundings.notificationCenter.post(CommandName::showMacCapture);
  activateMainWindow();
}

void NotletMacAppDelegate::handle(const LaunchRequest& request) {
  switch (request.kind) {
  case LaunchRequest::Kind::activate:
    return applicationShouldHandleReopen();
  case LaunchRequest::Kind::capture:
    return m_surroundings.notificationCenter.post(CommandName::openGlobalMacQuickNotlet);
  case LaunchRequest::Kind::open:
    return applicationOpen(request.urls);
  }
}

void NotletMacAppDelegate::activateMainWindow() {
  QMetaObject::invokeMethod(
      this,
      [this] {
        // The bubble may have been asked for in the meantime.
        if (!isFloatingMode())
          m_surroundings.surfaces.activateMainWindow();
      },
      Qt::QueuedConnection);
}

void NotletMacAppDelegate::popoverClosedByItself() {
  m_popoverClosed = m_surroundings.clock.now();
}

bool NotletMacAppDelegate::isCaptureShown() const {
  return isFloatingMode() ? m_surroundings.floatingPanelController->isExpanded()
                          : m_surroundings.surfaces.isPopoverShown();
}

bool NotletMacAppDelegate::closedForThisClick() const {
  return !isFloatingMode() && m_popoverClosed &&
         m_surroundings.clock.now() - *m_popoverClosed <= clickAfterClosing;
}

WaysBack NotletMacAppDelegate::waysBack() const {
  return {
      .statusItem = m_surroundings.statusItem.isShown(), .bubble = isFloatingMode(), .hotKey = m_hasHotKey};
}

// Of a double click, the first decides.
void NotletMacAppDelegate::statusItemClicked() {
  const auto now = m_surroundings.clock.now();
  if (!m_clicked || now - *m_clicked > doubleClick)
    m_clickOpens = !isCaptureShown() && !closedForThisClick();
  m_clicked = now;
  if (isCaptureShown() != m_clickOpens)
    togglePopover();
}

void NotletMacAppDelegate::togglePopover() {
  ShellSurfaces& surfaces = m_surroundings.surfaces;
  if (isFloatingMode()) {
    surfaces.closePopover();
    m_surroundings.floatingPanelController->toggleCapture();
  } else if (surfaces.isPopoverShown()) {
    surfaces.closePopover();
  } else {
    surfaces.showPopover(true);
  }
}

void NotletMacAppDelegate::enterFloatingMode() {
  if (!m_surroundings.floatingPanelController || isFloatingMode())
    return;
  m_surroundings.surfaces.closePopover();
  m_surroundings.coordinator.archiveActive = false;
  m_surroundings.surfaces.hideMainWindow();
  m_surroundings.floatingPanelController->enterFloatingMode();
}

void NotletMacAppDelegate::openGlobalQuickNotlet() {
  ShellSurfaces& surfaces = m_surroundings.surfaces;
  if (isFloatingMode()) {
    surfaces.closePopover();
    m_surroundings.floatingPanelController->expandCapture();
  } else if (surfaces.isPopoverShown()) {
    surfaces.activatePopover();
  } else {
    surfaces.showPopover(false);
  }
  // Only then is the composer on screen.
  postNextTurn(CommandName::focusMacCaptureInput);
}

void NotletMacAppDelegate::collapseFloatingCapture() {
  if (isFloatingMode())
    m_surroundings.floatingPanelController->collapseCapture();
}

void NotletMacAppDelegate::revealMainAppForNavigation() {
  if (isFloatingMode())
    m_surroundings.floatingPanelController->returnToMainApp();
}

// A tray that goes away must not leave a program behind that nobody can reach.
void NotletMacAppDelegate::followStatusItem() {
  const ShellSurfaces& surfaces = m_surroundings.surfaces;
  if (!WindowLife::keepsRunning(waysBack()) && !surfaces.isPopoverShown() && !surfaces.isMainWindowShown())
    activateMainWindow();
}

bool NotletMacAppDelegate::isFloatingMode() const {
  return m_surroundings.floatingPanelController && m_surroundings.floatingPanelController->isFloatingMode();
}

void NotletMacAppDelegate::postNextTurn(CommandName name) {
  QMetaObject::invokeMethod(
      this, [this, name] { m_surroundings.notificationCenter.post(name); }, Qt::QueuedConnection);
}

} // namespace notlet
