#pragma once

#include <QObject>
#include <memory>

#include "capture/CaptureComposer.h"
#include "commands/NotificationCenter.h"
#include "platform/Clock.h"
#include "platform/Defaults.h"
#include "platform/DraftKeeper.h"
#include "platform/Places.h"
#include "platform/Scheduler.h"
#include "shell/ui/MainWindow.h"
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

 private:
  [[nodiscard]] QWidget* makeMainContent();
  void reportStoreFailure(const QString& reason);

  SystemClock m_clock;
  TimerScheduler m_scheduler;
  NotificationCenter m_notificationCenter;
  JsonFileDefaults m_sharedDefaults;
  AppSettings m_settings;
  MacStorage m_storage;
  DraftKeeper m_draftKeeper;
  std::unique_ptr<CaptureComposer> m_composer;
  std::unique_ptr<MainWindow> m_mainWindow;
};

} // namespace notlet
