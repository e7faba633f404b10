#pragma once

#include <QObject>
#include <memory>

#include "archive/ArchiveBrowser.h"
#include "archive/ArchiveIndex.h"
#include "archive/UnsavedEdits.h"
#include "capture/CaptureComposer.h"
#include "commands/NotificationCenter.h"
#include "navigation/MainNavigation.h"
#include "platform/Clock.h"
#include "platform/Defaults.h"
#include "platform/DraftKeeper.h"
#include "platform/LaunchRequest.h"
#include "platform/Places.h"
#include "platform/Scheduler.h"
#include "platform/SteadyClock.h"
#include "platform/linux/DesktopFileOpener.h"
#include "platform/linux/FocusedWidget.h"
#include "platform/linux/KeyMonitor.h"
#include "shell/ui/MainWindow.h"
#include "shortcuts/MacShortcutCoordinator.h"
#include "shortcuts/MacShortcutSettings.h"
#include "storage/MacStorage.h"
#include "themes/AppSettings.h"

namespace notlet {

/// The program put together: every shared object, and the windows on them.
class NotletMacApp : public QObject {
  Q_OBJECT

 public:
  explicit NotletMacApp(const Places& places);
  /// Writes what the drafts still lack.
  ~NotletMacApp() override;

  /// Brings the main window forward.
  void activateMainWindow();
  /// Does what a start of the program asks for, this one's or a later one's.
  void handle(const LaunchRequest& request);

 private:
  void makeRules(ModelContext& context);
  [[nodiscard]] QWidget* makeMainContent();
  [[nodiscard]] QWidget* makeSection(MacSection section);
  void connectWindow();
  void reportStoreFailure(const QString& reason);
  void publishFlags(const ArchiveKeyboardFlags& flags);

  SystemClock m_clock;
  SystemSteadyClock m_steadyClock;
  TimerScheduler m_scheduler;
  NotificationCenter m_notificationCenter;
  JsonFileDefaults m_sharedDefaults;
  AppSettings m_settings;

  DesktopFileOpener m_fileOpener;
  MacShortcutSettings m_shortcutSettings;
  FocusedWidget m_focusedWidget;
  MacShortcutCoordinator m_coordinator;
  KeyMonitor m_keyMonitor;
  MainNavigation m_navigation;

  MacStorage m_storage;
  DraftKeeper m_draftKeeper;
  UnsavedEdits m_unsavedEdits;
  std::unique_ptr<CaptureComposer> m_composer;
  std::unique_ptr<ArchiveIndex> m_archiveIndex;
  std::unique_ptr<ArchiveBrowser> m_archiveBrowser;
  std::unique_ptr<MainWindow> m_mainWindow;
};

} // namespace notlet
