#include <QApplication>
#include <QCommandLineParser>
#include <cstdio>

#include "app/NotletMacApp.h"
#include "platform/linux/SingleInstance.h"
#include "platform/linux/TerminationSignals.h"
#include "widgets/AppIcon.h"
#include "widgets/NotletStyle.h"

int main(int argc, char** argv) {
  using namespace notlet;
  // Before any thread starts, so that all of them leave these signals to the event loop.
  TerminationSignals::block();
  QApplication application(argc, argv);
  const TerminationSignals signals;
  QApplication::setApplicationName(QStringLiteral("Notlet"));
  QApplication::setApplicationVersion(QStringLiteral(NOTLET_VERSION));
  QApplication::setDesktopFileName(QStringLiteral("notlet"));
  QApplication::setQuitOnLastWindowClosed(false);

  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Catches a short note in a second. `notlet` works from a terminal."));
  parser.addHelpOption();
  parser.addVersionOption();
  parser.process(application);

  const Places places = Places::fromEnvironment();
  SingleInstance instance(places.runtime ? std::optional(*places.runtime / "notlet") : std::nullopt);
  const auto role = instance.start();
  if (!role) {
    std::fprintf(stderr, "notlet-desktop: %s\n", role.error().message.c_str());
    return 1;
  }
  if (*role == SingleInstance::Role::HandedOver)
    return 0;

  QApplication::setStyle(new NotletStyle); // The application takes it over.
  QApplication::setWindowIcon(appIcon(AppIconTone::white));
  NotletMacApp app(places);
  QObject::connect(&instance, &SingleInstance::activationRequested, &app, &NotletMacApp::activateMainWindow);
  QObject::connect(&signals, &TerminationSignals::received, &application, &QCoreApplication::quit);
  app.activateMainWindow();
  return QApplication::exec();
}
