#include "platform/linux/DisplayServer.h"

#include <QtGlobal>

#include "platform/linux/QtWindowSystem.h"
#include "platform/linux/X11Connection.h"
#include "platform/linux/X11MouseWatch.h"
#include "platform/linux/X11WindowManager.h"
#include "platform/linux/X11WindowSystem.h"

namespace notlet {

DisplayServer displayServer() {
  if (!X11Connection::ofApplication())
    return DisplayServer::other;
  return qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? DisplayServer::x11 : DisplayServer::xwayland;
}

std::unique_ptr<WindowSystem> makeWindowSystem(X11UserTime& userTime) {
  if (const auto connection = X11Connection::ofApplication())
    return std::make_unique<X11WindowSystem>(*connection, userTime);
  return std::make_unique<QtWindowSystem>();
}

DesktopCapabilities windowCapabilities() {
  DesktopCapabilities capabilities;
  const auto connection = X11Connection::ofApplication();
  if (!connection)
    return capabilities;
  const X11WindowManager manager(*connection);
  const DisplayServer server = displayServer();
  // sway puts windows in the middle of the screen, those of X11 too.
  capabilities.placesWindows = server == DisplayServer::x11 || qEnvironmentVariableIsEmpty("SWAYSOCK");
  capabilities.keepsWindowsAbove = manager.supports("_NET_WM_STATE_ABOVE");
  capabilities.showsOnAllWorkspaces =
      manager.supports("_NET_WM_DESKTOP") || manager.supports("_NET_WM_STATE_STICKY");
  capabilities.seesMouseEverywhere = server == DisplayServer::x11 && X11MouseWatch::isPossible(*connection);
  return capabilities;
}

} // namespace notlet
