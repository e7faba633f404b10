#include <QApplication>
#include <QCommandLineParser>
#include <cstdio>
#include <optional>
#include <vector>

#include "app/NotletMacApp.h"
#include "platform/InstanceSocket.h"
#include "platform/LaunchRequest.h"
#include "platform/linux/BusApplication.h"
#include "platform/linux/MissingDisplay.h"
#include "platform/linux/PlatformChoice.h"
#include "platform/linux/SingleInstance.h"
#include "platform/linux/SuddenExit.h"
#include "platform/linux/TerminationSignals.h"
#include "widgets/Alert.h"
#include "widgets/NotletStyle.h"
#include "widgets/TextConversion.h"

namespace notlet {
namespace {

int report(const std::string& message, int status) {
  std::fprintf(stderr, "notlet-desktop: %s\n", message.c_str());
  return status;
}

/// For whoever started the program without a terminal; gives the status to end with.
int showRefusal(const std::string& reason) {
  Alert* alert = Alert::message(nullptr, QStringLiteral("Notlet could not be opened"), fromUtf8(reason));
  QObject::connect(alert, &Alert::finished, [] { QCoreApplication::exit(1); });
  alert->open();
  return QApplication::exec();
}

/// What the command line asks for; nothing when the program is to start without showing a window.
Result<std::optional<LaunchRequest>> requestFrom(QCommandLineParser& parser, const std::string& token) {
  parser.setApplicationDescription(
      QStringLiteral("Catches a short note in a second. `notlet` works from a terminal."));
  parser.addHelpOption();
  parser.addVersionOption();
  const QCommandLineOption capture(QStringLiteral("capture"), QStringLiteral("Opens the quick capture."));
  const QCommandLineOption background(
      QStringLiteral("background"), QStringLiteral("Starts without a window, for autostart; leaves a Notlet "
                                                   "that is running already alone."));
  const QCommandLineOption wayland(
      QStringLiteral("wayland"),
      QStringLiteral("Shows windows of Wayland’s own, which the desktop places. Without it Notlet takes "
                     "the session’s X server, if there is one, and places them itself."));
  parser.addOptions({capture, background, wayland});
  parser.addPositionalArgument(QStringLiteral("link"), QStringLiteral("A link that begins with “notlet:”."),
                               QStringLiteral("[link...]"));
  if (!parser.parse(QCoreApplication::arguments()))
    return failure(toUtf8(parser.errorText()) + " “notlet-desktop --help” lists the options.");
  parser.process(QCoreApplication::arguments()); // Prints help or version, when asked, and ends.

  const QStringList links = parser.positionalArguments();
  if (parser.isSet(capture) + parser.isSet(background) + !links.isEmpty() > 1)
    return failure("Only one of “--capture”, “--background” and links can be asked for at a time.");
  if (parser.isSet(background))
    return std::nullopt;
  LaunchRequest request{LaunchRequest::Kind::activate, {}, token};
  if (parser.isSet(capture))
    request.kind = LaunchRequest::Kind::capture;
  for (const QString& link : links) {
    request.kind = LaunchRequest::Kind::open;
    request.urls.push_back(toUtf8(link));
  }
  return request;
}

void nameProgram() {
  QApplication::setApplicationName(QStringLiteral("Notlet"));
  QApplication::setApplicationVersion(QStringLiteral(NOTLET_VERSION));
  QApplication::setDesktopFileName(QStringLiteral("org.notlet.Notlet"));
}

/// Prints help or version, which needs no display.
int tellOfProgram(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  const auto request = requestFrom(parser, {}); // Ends the program, unless something is wrong.
  return request ? 0 : report(request.error().message, 2);
}

} // namespace
} // namespace notlet

int main(int argc, char** argv) {
  using namespace notlet;
  // Before any thread starts, so that all of them leave these signals to the event loop.
  TerminationSignals::block();
  // Qt takes some of it out of the environment; nothing of it is for the programs that this one starts.
  const std::string token = activationTokenFromEnvironment();
  nameProgram();
  if (asksForText(argc, argv))
    return tellOfProgram(argc, argv);
  const auto platform = choosePlatform(PlatformWishes::of(argc, argv));
  if (!platform)
    return report(platform.error().message, 1);
  // Not by the environment, which is also that of the programs that this one starts.
  std::string option = "-platform";
  std::string name = *platform;
  std::vector<char*> arguments(argv, argv + argc + 1);
  if (!name.empty())
    arguments.insert(arguments.begin() + 1, {option.data(), name.data()});
  int argumentCount = static_cast<int>(arguments.size()) - 1;
  std::optional<MissingDisplay> endsWithoutDisplay(std::in_place);
  QApplication application(argumentCount, arguments.data());
  endsWithoutDisplay.reset();
  qunsetenv("XDG_ACTIVATION_TOKEN");
  qunsetenv("DESKTOP_STARTUP_ID");
  const TerminationSignals signals;
  QObject::connect(&signals, &TerminationSignals::received, &application, [] { QCoreApplication::exit(0); });
  QApplication::setQuitOnLastWindowClosed(false);

  QCommandLineParser parser;
  const auto request = requestFrom(parser, token);
  if (!request)
    return report(request.error().message, 2);
  const Places places = Places::fromEnvironment();
  const std::optional<LaunchRequest>& asked = *request;
  SingleInstance instance(instanceDirectories(places));
  const auto role = instance.start(asked);
  if (role == SingleInstance::Role::HandedOver)
    return 0;
  // Where no socket tells, the bus may know of another Notlet.
  if (role != SingleInstance::Role::First && asked &&
      BusApplication::handOver(*asked, std::chrono::seconds(1)))
    return 0;

  QApplication::setStyle(new NotletStyle); // The application takes it over.
  if (!role) {
    report(role.error().message, 1);
    return asked ? showRefusal(role.error().message) : 1;
  }
  NotletMacApp app(places);
  const SuddenExit keepDrafts([&app] { app.keepDrafts(); });
  QObject::connect(&instance, &SingleInstance::requested, &app, &NotletMacApp::handle);
  app.launch(asked);
  return QApplication::exec();
}
