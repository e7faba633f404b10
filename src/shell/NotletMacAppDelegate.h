#pragma once

#include <QObject>
#include <optional>
#include <span>
#include <string>

#include "commands/NotificationCenter.h"
#include "platform/GlobalHotKey.h"
#include "platform/LaunchRequest.h"
#include "platform/StatusItem.h"
#include "platform/SteadyClock.h"
#include "shell/MacFloatingPanelController.h"
#include "shell/ShellSurfaces.h"
#include "shell/WindowLife.h"
#include "shortcuts/MacShortcutCoordinator.h"
#include "shortcuts/MacShortcutSettings.h"

namespace notlet {

/// What the program does as a whole: which of its surfaces answers the status item, the hot key, links, other
/// starts of the program and the commands.
class NotletMacAppDelegate : public QObject {
  Q_OBJECT

 public:
  /// All must outlive the delegate.
  struct Surroundings {
    ShellSurfaces& surfaces;
    /// Null while the store is not open; until then there is no floating mode at all.
    MacFloatingPanelController* floatingPanelController;
    NotificationCenter& notificationCenter;
    MacShortcutCoordinator& coordinator;
    MacShortcutSettings& shortcutSettings;
    GlobalHotKey& hotKey;
    StatusItem& statusItem;
    const SteadyClock& clock;
  };

  explicit NotletMacAppDelegate(const Surroundings& surroundings, QObject* parent = nullptr);

  /// Starts to listen, asks for the hot key and does what the program was started for: the main window comes
  /// forward, unless only the quick capture is asked for, or nothing at all.
  void applicationDidFinishLaunching(const std::optional<LaunchRequest>& request = LaunchRequest());
  /// The store has been opened. The controller must outlive the delegate.
  void setFloatingPanelController(MacFloatingPanelController& controller);
  /// Brings edits of the shortcut file by hand into force, and asks again for a hot key that was taken.
  void applicationDidBecomeActive();
  /// Gives the hot key back.
  void applicationWillTerminate();
  /// The user opened the program again.
  void applicationShouldHandleReopen();
  /// Takes the first link whose scheme is exactly "notlet", of any length, and looks at nothing beyond it.
  void applicationOpen(std::span<const std::string> urls);
  /// What another start of the program asks for.
  void handle(const LaunchRequest& request);

  /// Brings the main window forward once the current event is over.
  void activateMainWindow();
  /// To be called when the popover closed because it lost the keyboard or because of a press elsewhere, but
  /// not when it was told to close.
  void popoverClosedByItself();

  /// What can bring the program back when its main window is closed now.
  [[nodiscard]] WaysBack waysBack() const;

 Q_SIGNALS:
  /// Chosen in the status item's menu.
  void settingsRequested();
  void quitRequested();

 private:
  void listenToStatusItem();
  void configureGlobalQuickNotletHotKey();
  void observeCommands();
  void reportHotKey(GlobalHotKey::Failure failure);
  void hotKeyInstalled();
  void followMessages();

  void statusItemClicked();
  void togglePopover();
  void enterFloatingMode();
  void openGlobalQuickNotlet();
  void collapseFloatingCapture();
  void followStatusItem();
  void revealMainAppForNavigation();

  [[nodiscard]] bool isFloatingMode() const;
  /// The popover, or the panel that stands in for it in floating mode.
  [[nodiscard]] bool isCaptureShown() const;
  [[nodiscard]] bool closedForThisClick() const;
  void postNextTurn(CommandName name);

  Surroundings m_surroundings;
  std::optional<SteadyClock::Time> m_popoverClosed;
  /// When the status item was last clicked, and what for.
  std::optional<SteadyClock::Time> m_clicked;
  bool m_clickOpens = false;
  /// It was asked for and not refused.
  bool m_hasHotKey = false;
  /// Why there is no hot key, until the user has read it.
  std::optional<std::string> m_hotKeyMessage;
  /// What the shortcuts' one place for messages said last.
  std::optional<std::string> m_toldMessage;
};

} // namespace notlet
