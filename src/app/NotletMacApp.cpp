#include "app/NotletMacApp.h"

#include <QApplication>
#include <QShortcut>

#include "capture/ui/MacNotletView.h"
#include "shell/ui/MacStorageUnavailableView.h"
#include "widgets/Alert.h"

namespace notlet {

namespace {

std::filesystem::path defaultsFile(const Places& places, const char* name) {
  return places.state ? *places.state / name : std::filesystem::path();
}

std::optional<std::filesystem::path> draftDirectory(const Places& places) {
  if (!places.state)
    return std::nullopt;
  return *places.state / "drafts";
}

} // namespace

NotletMacApp::NotletMacApp(const Places& places)
    : m_sharedDefaults(defaultsFile(places, "shared-defaults.json")),
      m_settings(m_sharedDefaults),
      m_storage(places.data),
      m_draftKeeper(draftDirectory(places), "main-window", m_scheduler) {
  m_mainWindow = std::make_unique<MainWindow>(m_settings, makeMainContent());
  auto* quit = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q), m_mainWindow.get());
  connect(quit, &QShortcut::activated, qApp, &QCoreApplication::quit);
  connect(m_mainWindow.get(), &MainWindow::closed, qApp, &QCoreApplication::quit);
}

// The window goes first: its views use the composer until the end.
NotletMacApp::~NotletMacApp() {
  m_mainWindow.reset();
  m_composer.reset();
}

QWidget* NotletMacApp::makeMainContent() {
  if (!m_storage.container())
    return new MacStorageUnavailableView(m_storage.errorDescription());
  ModelContext& context = m_storage.container()->mainContext();
  connect(&context, &ModelContext::storeFailed, this, &NotletMacApp::reportStoreFailure);
  m_composer = std::make_unique<CaptureComposer>(
      CaptureComposer::Surroundings{context, m_notificationCenter, m_clock, m_scheduler, m_draftKeeper});
  return new MacNotletView(*m_composer);
}

void NotletMacApp::reportStoreFailure(const QString& reason) {
  Alert::message(m_mainWindow.get(), QStringLiteral("Notlet storage is unavailable"), reason)->open();
}

void NotletMacApp::activateMainWindow() {
  m_mainWindow->activate();
}

} // namespace notlet
