#include "platform/linux/PlatformChoice.h"

#include <QCoreApplication>
#include <QDir>
#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace notlet {

namespace {

constexpr std::string_view pluginIsMissing =
    "Qt’s plugin for Wayland is not installed. Debian has it in the package “qt6-wayland”.";

bool hasWaylandPlugin() {
  return std::ranges::any_of(QCoreApplication::libraryPaths(), [](const QString& path) {
    const QDir platforms(path + QStringLiteral("/platforms"));
    return !platforms.entryList({QStringLiteral("libqwayland*.so")}, QDir::Files).isEmpty();
  });
}

/// Qt takes its own options with one dash or two, and the value as a word of its own or after an equals sign.
bool namesPlatform(std::string_view argument) {
  if (argument.starts_with("--"))
    argument.remove_prefix(1);
  return argument == "-platform" || argument.starts_with("-platform=");
}

} // namespace

PlatformWishes PlatformWishes::of(int argumentCount, const char* const* arguments) {
  PlatformWishes wishes{.isChosen = !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"),
                        .hasWayland = !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"),
                        .hasX11 = !qEnvironmentVariableIsEmpty("DISPLAY"),
                        .hasWaylandPlugin = notlet::hasWaylandPlugin()};
  for (const std::string_view argument : std::span(arguments, static_cast<std::size_t>(argumentCount))) {
    if (argument == "--")
      break; // What follows are links.
    wishes.asksForWayland |= argument == "--wayland";
    wishes.isChosen |= namesPlatform(argument);
  }
  return wishes;
}

bool asksForText(int argumentCount, const char* const* arguments) {
  constexpr auto options =
      std::to_array<std::string_view>({"-h", "-?", "--help", "--help-all", "-v", "--version"});
  for (const std::string_view argument : std::span(arguments, static_cast<std::size_t>(argumentCount))) {
    if (argument == "--")
      return false;
    if (std::ranges::find(options, argument) != options.end())
      return true;
  }
  return false;
}

Result<std::string> choosePlatform(const PlatformWishes& wishes) {
  if (wishes.asksForWayland) {
    if (!wishes.hasWayland)
      return failure("“--wayland” needs a Wayland session, and WAYLAND_DISPLAY names none.");
    if (!wishes.hasWaylandPlugin)
      return failure(std::string(pluginIsMissing));
    return "wayland";
  }
  if (wishes.isChosen || !wishes.hasWayland)
    return "";
  if (wishes.hasX11)
    return "xcb";
  if (!wishes.hasWaylandPlugin)
    return failure("This Wayland session has no X server. " + std::string(pluginIsMissing));
  return "wayland";
}

} // namespace notlet
