#pragma once

#include <QObject>
#include <QPointer>
#include <memory>
#include <optional>

#include "app/Desktop.h"
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
#include "platform/linux/QtFileChooser.h"
#include "platform/speech/InstalledSpeech.h"
#include "shell/DesktopLimits.h"
#include "shell/MacFloatingPanelController.h"
#include "shell/NotletMacAppDelegate.h"
#include "shell/WindowLife.h"
#include "shell/ui/ContentSlot.h"
#include "shell/ui/FloatingPanelWindows.h"
#include "shell/ui/MainWindow.h"
#include "shell/ui/PopoverWindow.h"
#include "shell/ui/ShellWindows.h"
#include "shell/ui/WindowFrames.h"
#include "shortcuts/MacShortcutCoordinator.h"
#include "shortcuts/MacShortcutSettings.h"
#include "shortcuts/SettingsScreen.h"
#include "shortcuts/ShortcutSettingsDraft.h"
#include "shortcuts/ui/SettingsWindow.h"
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

  /// Brings the program up, with what this start asks for; without a request no window is shown.
  void launch(const std::optional<LaunchRequest>& request);
  /// Does what a later start, or the desktop, asks for.
  void handle(const LaunchRequest& request);
  /// Writes what was typed and is not written yet. Touches no window.
  void keepDrafts();

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// A composer with what it keeps its draft in.
  struct Capture {
    DraftKeeper draftKeeper;
    std::unique_ptr<CaptureComposer> composer;
  };

  void makeRules(ModelContext& context);
  void makeComposer(Capture& capture, ModelContext& context, CaptureComposer::Surface surface);
  void makeWindows();
  void makeFloatingPanel();
  [[nodiscard]] QWidget* makeMainContent();
  [[nodiscard]] QWidget* makeSection(MacSection section);
  [[nodiscard]] QWidget* makeThemes();
  [[nodiscard]] PopoverWindow& popover();
  [[nodiscard]] QWidget* makePopoverContent();
  [[nodiscard]] QWidget* makeBubble();
  [[nodiscard]] QWidget* makePanelContent();
  [[nodiscard]] bool showsScreens() const;
  void followStorage();

  void connectWindows();
  void addProgramKeys(QWidget* window);
  void openSettings();
  void makeSettingsWindow();
  void connectDesktop();
  void connectMessages();
  void showNotice();
  void dismissNotice();
  void configureApplicationIcon();
  void startDesktop();
  void closeMainWindow();
  void explain(const WaysBack& waysBack);
  void quit();
  void flushDrafts();
  [[nodiscard]] bool isTextSafe();
  void reportStoreFailure(const QString& reason);
  void publishFlags(const ArchiveKeyboardFlags& flags);

  SystemClock m_clock;
  SystemSteadyClock m_steadyClock;
  TimerScheduler m_scheduler;
  NotificationCenter m_notificationCenter;
  JsonFileDefaults m_sharedDefaults;
  JsonFileDefaults m_defaults;
  AppSettings m_settings;
  Desktop m_desktop;
  WindowFrames m_windowFrames{m_settings, m_desktop.windowSystem()};
  InstalledSpeech m_speech;
  SpeechService m_speechService;

  DesktopFileOpener m_fileOpener;
  QtFileChooser m_fileChooser;
  MacShortcutSettings m_shortcutSettings;
  FocusedWidget m_focusedWidget;
  MacShortcutCoordinator m_coordinator;
  ShortcutSettingsDraft m_shortcutDraft;
  SettingsScreen m_settingsScreen;
  KeyMonitor m_keyMonitor;
  MainNavigation m_navigation;

  MacStorage m_storage;
  Capture m_mainCapture;
  Capture m_popoverCapture;
  Capture m_panelCapture;
  UnsavedEdits m_unsavedEdits;
  std::unique_ptr<ArchiveIndex> m_archiveIndex;
  std::unique_ptr<ArchiveBrowser> m_archiveBrowser;

  WindowLife m_windowLife;
  DesktopLimits m_desktopLimits;
  /// What became of the program when its window was closed, until the user has read it (UTF-8).
  std::string m_explanation;
  // What the windows show instead when there is no store. The windows own them.
  ContentSlot* m_mainContent = nullptr;
  ContentSlot* m_popoverContent = nullptr;
  bool m_showsScreens = false;
  std::unique_ptr<MainWindow> m_mainWindow;
  std::unique_ptr<PopoverWindow> m_popover;
  /// Made when it is first asked for.
  std::unique_ptr<SettingsWindow> m_settingsWindow;
  std::unique_ptr<ShellWindows> m_shellWindows;
  std::unique_ptr<FloatingPanelWindows> m_floatingPanel;
  std::unique_ptr<MacFloatingPanelController> m_floatingPanelController;
  std::unique_ptr<NotletMacAppDelegate> m_delegate;
  QPointer<Alert> m_quitQuestion;
  bool m_isDesktopStarted = false;
};

} // namespace notlet
