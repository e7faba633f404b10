#include "app/NotletMacApp.h"

#include <QApplication>
#include <QLocale>
#include <QShortcut>

#include "archive/ui/ArchiveWarmUp.h"
#include "archive/ui/MacArchiveView.h"
#include "capture/ui/MacCaptureView.h"
#include "capture/ui/MacNotletView.h"
#include "navigation/ui/MacMainView.h"
#include "platform/TemporaryFile.h"
#include "shell/ui/MacFloatingBubbleView.h"
#include "shell/ui/MacStorageUnavailableView.h"
#include "shortcuts/ui/MacSettingsView.h"
#include "shortcuts/ui/ShortcutForm.h"
#include "themes/ThemeFilter.h"
#include "themes/ui/ThemeSettingsView.h"
#include "widgets/Alert.h"
#include "widgets/AppIcon.h"
#include "widgets/Motion.h"
#include "widgets/TextConversion.h"

namespace notlet {

namespace {

std::filesystem::path defaultsFile(const Places& places, const char* name) {
  return places.state ? *places.state / name : std::filesystem::path();
}

/// Where unfinished texts are kept; nothing without a place for them.
std::optional<std::filesystem::path> draftDirectory(const Places& places) {
  if (!places.state)
    return std::nullopt;
  return *places.state / "drafts";
}

std::optional<std::filesystem::path> editDirectory(const Places& places) {
  if (!places.state)
    return std::nullopt;
  return *places.state / "drafts" / "edits";
}

/// A run that was killed while it wrote may have left private text.
void tidy(const Places& places) {
  for (const auto& folder :
       {places.data, places.state, places.configuration, draftDirectory(places), editDirectory(places)})
    if (folder)
      removeAbandonedFiles(*folder);
}

std::filesystem::path programDirectory() {
  return toUtf8(QCoreApplication::applicationDirPath());
}

/// As the user's session names them, the first choice first.
std::vector<std::string> preferredLanguages() {
  std::vector<std::string> languages;
  for (const QString& language : QLocale::system().uiLanguages())
    languages.push_back(toUtf8(language));
  return languages;
}

/// For the first window to be painted and to get the keyboard.
constexpr std::chrono::milliseconds timeToComeUp{150};
/// For whoever started the program to write to begin with it.
constexpr std::chrono::milliseconds timeToSettle{600};

} // namespace

NotletMacApp::NotletMacApp(const Places& places)
    : m_sharedDefaults(defaultsFile(places, "shared-defaults.json")),
      m_defaults(defaultsFile(places, "defaults.json")),
      m_settings(m_sharedDefaults),
      m_speech(places, InstalledSpeech::libraryOf(programDirectory())),
      m_speechService(m_speech, m_scheduler),
      m_shortcutSettings(places.configuration, m_fileOpener),
      m_coordinator({m_notificationCenter, m_shortcutSettings, m_steadyClock, m_focusedWidget}),
      m_shortcutDraft(m_shortcutSettings),
      m_settingsScreen(m_shortcutDraft, m_focusedWidget),
      m_keyMonitor([this](const KeyPress& press) {
        return m_settingsScreen.handle(press) || m_coordinator.handle(press);
      }),
      m_navigation(m_notificationCenter, m_coordinator),
      m_storage(places.data),
      m_mainCapture{{draftDirectory(places), "main-window", m_scheduler}, nullptr},
      m_popoverCapture{{draftDirectory(places), "popover", m_scheduler}, nullptr},
      m_panelCapture{{draftDirectory(places), "panel", m_scheduler}, nullptr},
      m_unsavedEdits(editDirectory(places), m_scheduler),
      m_windowLife(m_defaults),
      m_desktopLimits(m_defaults) {
  tidy(places);
  if (ModelContext* context = m_storage.context())
    makeRules(*context);
  makeWindows();
  m_delegate = std::make_unique<NotletMacAppDelegate>(NotletMacAppDelegate::Surroundings{
      *m_shellWindows, m_floatingPanelController.get(), m_notificationCenter, m_coordinator,
      m_shortcutSettings, m_desktop.hotKey(), m_desktop.statusItem(), m_steadyClock});
  connectWindows();
  connectDesktop();
  connectMessages();
}

// The windows go first: their views use the rules until the end.
NotletMacApp::~NotletMacApp() {
  m_delegate->applicationWillTerminate();
  m_delegate.reset();
  m_floatingPanelController.reset();
  m_floatingPanel.reset();
  m_shellWindows.reset();
  m_popover.reset();
  m_settingsWindow.reset();
  m_mainWindow.reset();
  m_archiveBrowser.reset();
  m_archiveIndex.reset();
}

bool NotletMacApp::showsScreens() const {
  return m_storage.container() != nullptr || m_storage.isAwaited();
}

// What was typed in screens that go away stays in their rules.
void NotletMacApp::followStorage() {
  if (m_storage.container() && !m_floatingPanelController) {
    makeFloatingPanel();
    m_delegate->setFloatingPanelController(*m_floatingPanelController);
  }
  if (std::exchange(m_showsScreens, showsScreens()) && m_showsScreens)
    return;
  m_mainContent->renew();
  if (m_popoverContent)
    m_popoverContent->renew();
}

void NotletMacApp::makeRules(ModelContext& context) {
  connect(&context, &ModelContext::storeFailed, this, &NotletMacApp::reportStoreFailure);
  context.setLoadingPaused(!m_isDesktopStarted);
  makeComposer(m_mainCapture, context, CaptureComposer::Surface::mainWindow);
  makeComposer(m_popoverCapture, context, CaptureComposer::Surface::quickCapture);
  makeComposer(m_panelCapture, context, CaptureComposer::Surface::quickCapture);
  m_archiveIndex = std::make_unique<ArchiveIndex>(context);
  m_archiveBrowser = std::make_unique<ArchiveBrowser>(
      ArchiveBrowser::Surroundings{*m_archiveIndex, m_notificationCenter, m_clock, m_unsavedEdits,
                                   [this](const ArchiveKeyboardFlags& flags) { publishFlags(flags); }});
}

void NotletMacApp::makeComposer(Capture& capture, ModelContext& context, CaptureComposer::Surface surface) {
  capture.composer = std::make_unique<CaptureComposer>(
      CaptureComposer::Surroundings{context, m_notificationCenter, m_clock, m_scheduler, capture.draftKeeper,
                                    &m_desktop.widgetTimelines(), &m_speechService, preferredLanguages()},
      surface);
}

void NotletMacApp::makeWindows() {
  m_showsScreens = showsScreens();
  m_mainContent = new ContentSlot([this] { return makeMainContent(); });
  m_mainWindow = std::make_unique<MainWindow>(m_settings, m_mainContent);
  m_focusedWidget.setMainWindow(m_mainWindow.get());
  m_shellWindows = std::make_unique<ShellWindows>(
      ShellWindows::Surroundings{*m_mainWindow, [this]() -> PopoverWindow& { return popover(); },
                                 m_desktop.statusItem(), m_desktop.windowSystem(), m_desktop.screens()});
  if (m_storage.container())
    makeFloatingPanel();
}

void NotletMacApp::makeFloatingPanel() {
  m_floatingPanel = std::make_unique<FloatingPanelWindows>(
      FloatingPanelWindows::Surroundings{m_settings, m_desktop.windowSystem(), m_desktop.screens()},
      FloatingPanelWindows::Contents{[this] { return makeBubble(); }, [this] { return makePanelContent(); }});
  m_floatingPanelController =
      std::make_unique<MacFloatingPanelController>(MacFloatingPanelController::Surroundings{
          *m_floatingPanel, m_desktop.screens(), m_defaults, m_notificationCenter, m_coordinator});
  connect(m_floatingPanel.get(), &FloatingPanelWindows::captureClosedByDesktop,
          m_floatingPanelController.get(), &MacFloatingPanelController::collapseCapture);
}

QWidget* NotletMacApp::makeMainContent() {
  if (!showsScreens())
    return new MacStorageUnavailableView(m_storage.errorDescription());
  return new MacMainView(m_navigation, [this](MacSection section) { return makeSection(section); });
}

QWidget* NotletMacApp::makeSection(MacSection section) {
  switch (section) {
  case MacSection::archive:
    return new MacArchiveView(*m_archiveBrowser);
  case MacSection::themes:
    return makeThemes();
  case MacSection::notlet:
    break;
  }
  return new MacNotletView(*m_mainCapture.composer);
}

QWidget* NotletMacApp::makeThemes() {
  auto* view = new ThemeSettingsView({m_settings, m_fileChooser, userLocaleName()});
  m_focusedWidget.addSearch(view, [view] { view->focusSearch(); });
  return view;
}

// The first window does not wait for it.
PopoverWindow& NotletMacApp::popover() {
  if (m_popover)
    return *m_popover;
  m_popoverContent = new ContentSlot([this] { return makePopoverContent(); });
  m_popover = std::make_unique<PopoverWindow>(m_settings, m_desktop.windowSystem(), m_popoverContent);
  connect(m_popoverContent, &ContentSlot::renewed, m_popover.get(), &PopoverWindow::fit);
  addProgramKeys(m_popover.get());
  connect(m_popover.get(), &PopoverWindow::closed, m_delegate.get(),
          [this](PopoverWindow::CloseReason reason) {
            if (reason == PopoverWindow::CloseReason::deactivated ||
                reason == PopoverWindow::CloseReason::pressedElsewhere)
              m_delegate->popoverClosedByItself();
          });
  return *m_popover;
}

QWidget* NotletMacApp::makePopoverContent() {
  if (!showsScreens())
    return new MacStorageUnavailableView(m_storage.errorDescription());
  return new MacCaptureView(
      *m_popoverCapture.composer,
      {.onClose = [this] { m_popover->dismiss(); }, .onShowMainApp = {}, .onDragEnded = {}});
}

QWidget* NotletMacApp::makeBubble() {
  using Mover = MacFloatingBubbleView::Mover;
  return new MacFloatingBubbleView(
      m_desktop.capabilities().placesWindows ? Mover::program : Mover::windowSystem,
      [this] { m_floatingPanelController->expandCapture(); },
      [this](QPointF movement, bool hasEnded) { m_floatingPanelController->dragBubble(movement, hasEnded); });
}

QWidget* NotletMacApp::makePanelContent() {
  MacFloatingPanelController* controller = m_floatingPanelController.get();
  const bool placesWindows = m_desktop.capabilities().placesWindows;
  auto* view = new MacCaptureView(*m_panelCapture.composer,
                                  {.onClose = [controller] { controller->collapseCapture(); },
                                   .onShowMainApp = [controller] { controller->returnToMainApp(); },
                                   // Where the program does not know its place, there is none to keep.
                                   .onDragEnded =
                                       [controller, placesWindows] {
                                         if (placesWindows)
                                           controller->captureDragEnded();
                                       },
                                   .placesWindows = placesWindows});
  addProgramKeys(view);
  return view;
}

void NotletMacApp::connectWindows() {
  addProgramKeys(m_mainWindow.get());
  connect(&m_storage, &MacStorage::changed, this, &NotletMacApp::followStorage);
  connect(m_mainWindow.get(), &MainWindow::closeRequested, this, &NotletMacApp::closeMainWindow);
  connect(m_delegate.get(), &NotletMacAppDelegate::quitRequested, this, &NotletMacApp::quit);
  connect(m_delegate.get(), &NotletMacAppDelegate::settingsRequested, this, &NotletMacApp::openSettings);
}

// Each window has its own: the shortcuts of a window that is hidden are not in force.
void NotletMacApp::addProgramKeys(QWidget* window) {
  const auto add = [this, window](QKeyCombination keys, void (NotletMacApp::*action)()) {
    connect(new QShortcut(QKeySequence(keys), window), &QShortcut::activated, this, action);
  };
  add(Qt::CTRL | Qt::Key_Q, &NotletMacApp::quit);
  add(Qt::CTRL | Qt::Key_Comma, &NotletMacApp::openSettings);
}

void NotletMacApp::openSettings() {
  if (!m_settingsWindow)
    makeSettingsWindow();
  m_settingsScreen.open();
  m_settingsWindow->reveal();
  m_desktop.windowSystem().activate(m_settingsWindow->winId());
}

void NotletMacApp::makeSettingsWindow() {
  const std::string location = m_shortcutSettings.location().value_or("There is no home folder.").string();
  auto* form =
      new ShortcutForm(m_shortcutDraft, fromUtf8(location), [this] { return m_desktop.capabilities(); });
  m_settingsWindow =
      std::make_unique<SettingsWindow>(m_settings, m_settingsScreen, m_shortcutDraft,
                                       new MacSettingsView(m_settingsScreen, makeThemes(), form));
  m_focusedWidget.setSettingsWindow(m_settingsWindow.get());
  addProgramKeys(m_settingsWindow.get());
}

void NotletMacApp::connectDesktop() {
  connect(&m_desktop.application(), &BusApplication::requested, this, &NotletMacApp::handle);
  connect(&m_desktop.appearance(), &Appearance::changed, this, &NotletMacApp::configureApplicationIcon);
  connect(&m_desktop.appearance(), &PortalAppearance::reducesMotionChanged, this,
          [this] { Motion::setReduced(m_desktop.appearance().reducesMotion()); });
  // Edits of the shortcut file by hand take effect on return to the program.
  connect(qApp, &QGuiApplication::applicationStateChanged, m_delegate.get(),
          [this](Qt::ApplicationState state) {
            if (state != Qt::ApplicationActive)
              return;
            m_delegate->applicationDidBecomeActive();
            m_settings.tryAgain();
          });
}

void NotletMacApp::connectMessages() {
  connect(&m_shortcutSettings, &MacShortcutSettings::changed, this, &NotletMacApp::showNotice);
  connect(&m_settings, &AppSettings::warningChanged, this, &NotletMacApp::showNotice);
  connect(m_mainWindow.get(), &MainWindow::noticeDismissed, this, &NotletMacApp::dismissNotice);
  showNotice();
}

void NotletMacApp::showNotice() {
  std::string text = m_explanation;
  if (text.empty())
    text = m_shortcutSettings.errorMessage().value_or("");
  if (text.empty())
    text = m_settings.warning();
  if (text.empty())
    text = m_desktopLimits.notice(m_desktop.capabilities());
  m_mainWindow->setNotice(fromUtf8(text));
}

void NotletMacApp::dismissNotice() {
  if (!m_explanation.empty()) {
    m_explanation.clear();
    m_windowLife.noteExplained();
  } else if (m_shortcutSettings.errorMessage()) {
    m_shortcutSettings.setErrorMessage(std::nullopt);
  } else if (!m_settings.warning().empty()) {
    m_settings.dismissWarning();
  } else {
    m_desktopLimits.noteRead();
  }
  showNotice();
}

void NotletMacApp::configureApplicationIcon() {
  QApplication::setWindowIcon(
      appIcon(m_desktop.appearance().isDark() ? AppIconTone::white : AppIconTone::black));
}

void NotletMacApp::launch(const std::optional<LaunchRequest>& request) {
  configureApplicationIcon();
  if (request)
    m_desktop.windowSystem().noteActivationToken(request->activationToken);
  qApp->installEventFilter(this);
  m_delegate->applicationDidFinishLaunching(request);
  if (!request)
    startDesktop();
}

// The tray, the bus, the popover's first layout and the older notlets can wait until there is something to
// see. A window that its content covers is not painted itself, but it is exposed.
bool NotletMacApp::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Expose) {
    qApp->removeEventFilter(this);
    m_scheduler.after(timeToComeUp, this, [this] { startDesktop(); });
    m_scheduler.after(timeToSettle, this, [this] {
      if (const ModelContext* context = m_storage.context())
        new ArchiveWarmUp(*context, *m_mainWindow, this); // It goes by itself.
    });
  }
  return QObject::eventFilter(watched, event);
}

void NotletMacApp::startDesktop() {
  if (std::exchange(m_isDesktopStarted, true))
    return;
  m_desktop.start();
  popover().prepare();
  if (ModelContext* context = m_storage.context())
    context->setLoadingPaused(false);
}

void NotletMacApp::handle(const LaunchRequest& request) {
  m_desktop.windowSystem().noteActivationToken(request.activationToken);
  m_delegate->handle(request);
}

void NotletMacApp::keepDrafts() {
  flushDrafts();
  const QSignalBlocker noWindowIsTold(&m_settings);
  m_settings.tryAgain();
}

void NotletMacApp::flushDrafts() {
  for (Capture* capture : {&m_mainCapture, &m_popoverCapture, &m_panelCapture})
    capture->draftKeeper.flush();
  m_unsavedEdits.flush();
}

void NotletMacApp::closeMainWindow() {
  const WaysBack waysBack = m_delegate->waysBack();
  if (!WindowLife::keepsRunning(waysBack))
    return quit();
  if (m_windowLife.mustExplain())
    explain(waysBack);
  m_mainWindow->hide();
}

/// Tells once that the program goes on: the desktop at once, or else the window when it is next open.
void NotletMacApp::explain(const WaysBack& waysBack) {
  const std::string text = WindowLife::explanation(waysBack);
  if (m_desktop.notifications().show(QStringLiteral("Notlet"), fromUtf8(text))) {
    m_explanation.clear();
    m_windowLife.noteExplained();
  } else {
    m_explanation = text;
  }
  showNotice();
}

// Windows are not asked: closing one is something else than leaving.
void NotletMacApp::quit() {
  flushDrafts();
  if (isTextSafe())
    return QCoreApplication::exit(0);
  if (m_quitQuestion) {
    // It waits over one window while the key comes from another.
    m_quitQuestion->raise();
    return m_desktop.windowSystem().activate(m_quitQuestion->winId());
  }
  // Over the text at stake, if that is where it was asked for, and back to it when it is called off.
  const bool isFromPopover = m_popover && m_popover->isActiveWindow();
  if (!isFromPopover)
    m_shellWindows->activateMainWindow();
  m_quitQuestion = Alert::destructiveQuestion(
      isFromPopover ? m_popoverContent : m_mainWindow->centralWidget(),
      QStringLiteral("Quit and lose what you typed?"),
      QStringLiteral(
          "What you typed and did not save cannot be kept on the disk. It is lost when Notlet ends."),
      QStringLiteral("Quit"));
  connect(m_quitQuestion, &Alert::accepted, this, [] { QCoreApplication::exit(0); });
  m_quitQuestion->open();
}

bool NotletMacApp::isTextSafe() {
  for (Capture* capture : {&m_mainCapture, &m_popoverCapture, &m_panelCapture})
    if (!capture->draftKeeper.isSafe())
      return false;
  return m_unsavedEdits.isSafe();
}

void NotletMacApp::publishFlags(const ArchiveKeyboardFlags& flags) {
  m_coordinator.archiveEditingActive = flags.editingActive;
  m_coordinator.archiveSearchFieldActive = flags.searchFieldActive;
  m_coordinator.archiveHashtagNavigationActive = flags.hashtagNavigationActive;
}

void NotletMacApp::reportStoreFailure(const QString& reason) {
  // Without a store that is open the windows themselves say so.
  if (!m_storage.container())
    return;
  Alert::message(m_mainWindow->centralWidget(), QStringLiteral("Notlet storage is unavailable"), reason)
      ->open();
}

} // namespace notlet
