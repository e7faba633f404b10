#include "app/NotletMacApp.h"

#include <QApplication>
#include <QShortcut>

#include "archive/ui/MacArchiveView.h"
#include "capture/ui/MacNotletView.h"
#include "navigation/ui/MacMainView.h"
#include "shell/ui/MacStorageUnavailableView.h"
#include "themes/ui/PlainThemeList.h"
#include "widgets/Alert.h"
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

} // namespace

NotletMacApp::NotletMacApp(const Places& places)
    : m_sharedDefaults(defaultsFile(places, "shared-defaults.json")),
      m_settings(m_sharedDefaults),
      m_shortcutSettings(places.configuration, m_fileOpener),
      m_coordinator({m_notificationCenter, m_shortcutSettings, m_steadyClock, m_focusedWidget}),
      m_keyMonitor([this](const KeyPress& press) { return m_coordinator.handle(press); }),
      m_navigation(m_notificationCenter, m_coordinator),
      m_storage(places.data),
      m_draftKeeper(draftDirectory(places), "main-window", m_scheduler),
      m_unsavedEdits(editDirectory(places), m_scheduler) {
  m_mainWindow = std::make_unique<MainWindow>(m_settings, makeMainContent());
  connectWindow();
}

// The window goes first: its views use the rules until the end.
NotletMacApp::~NotletMacApp() {
  m_mainWindow.reset();
  m_archiveBrowser.reset();
  m_archiveIndex.reset();
  m_composer.reset();
}

void NotletMacApp::makeRules(ModelContext& context) {
  connect(&context, &ModelContext::storeFailed, this, &NotletMacApp::reportStoreFailure);
  m_composer = std::make_unique<CaptureComposer>(
      CaptureComposer::Surroundings{context, m_notificationCenter, m_clock, m_scheduler, m_draftKeeper});
  m_archiveIndex = std::make_unique<ArchiveIndex>(context);
  m_archiveBrowser = std::make_unique<ArchiveBrowser>(
      ArchiveBrowser::Surroundings{*m_archiveIndex, m_notificationCenter, m_clock, m_unsavedEdits,
                                   [this](const ArchiveKeyboardFlags& flags) { publishFlags(flags); }});
}

QWidget* NotletMacApp::makeMainContent() {
  if (!m_storage.container())
    return new MacStorageUnavailableView(m_storage.errorDescription());
  makeRules(m_storage.container()->mainContext());
  return new MacMainView(m_navigation, [this](MacSection section) { return makeSection(section); });
}

QWidget* NotletMacApp::makeSection(MacSection section) {
  switch (section) {
  case MacSection::archive:
    return new MacArchiveView(*m_archiveBrowser);
  case MacSection::themes:
    return new PlainThemeList(m_settings);
  case MacSection::notlet:
    break;
  }
  return new MacNotletView(*m_composer);
}

void NotletMacApp::connectWindow() {
  auto* quit = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q), m_mainWindow.get());
  connect(quit, &QShortcut::activated, qApp, &QCoreApplication::quit);
  connect(m_mainWindow.get(), &MainWindow::closed, qApp, &QCoreApplication::quit);

  const auto showMessage = [this] {
    m_mainWindow->setNotice(fromUtf8(m_shortcutSettings.errorMessage().value_or("")));
  };
  connect(&m_shortcutSettings, &MacShortcutSettings::changed, m_mainWindow.get(), showMessage);
  connect(m_mainWindow.get(), &MainWindow::noticeDismissed, this,
          [this] { m_shortcutSettings.setErrorMessage(std::nullopt); });
  showMessage();
  // Edits of the shortcut file by hand take effect on return to the program.
  connect(qApp, &QGuiApplication::applicationStateChanged, &m_shortcutSettings,
          [this](Qt::ApplicationState state) {
            if (state == Qt::ApplicationActive)
              m_shortcutSettings.reload();
          });
}

void NotletMacApp::publishFlags(const ArchiveKeyboardFlags& flags) {
  m_coordinator.archiveEditingActive = flags.editingActive;
  m_coordinator.archiveSearchFieldActive = flags.searchFieldActive;
  m_coordinator.archiveHashtagNavigationActive = flags.hashtagNavigationActive;
}

void NotletMacApp::reportStoreFailure(const QString& reason) {
  Alert::message(m_mainWindow.get(), QStringLiteral("Notlet storage is unavailable"), reason)->open();
}

void NotletMacApp::activateMainWindow() {
  m_mainWindow->activate();
}

void NotletMacApp::handle(const LaunchRequest& /*request*/) {
  activateMainWindow();
}

} // namespace notlet
