#include "app/Desktop.h"

#include "platform/linux/DisplayServer.h"
#include "platform/linux/PortalHotKey.h"
#include "platform/linux/X11HotKey.h"

namespace notlet {

namespace {

HotKeyRoute routeToHotKey() {
  return displayServer() == DisplayServer::x11 ? HotKeyRoute::x11 : HotKeyRoute::portal;
}

std::unique_ptr<GlobalHotKey> makeHotKey(HotKeyRoute route, X11UserTime& userTime,
                                         WindowSystem& windowSystem) {
  if (route == HotKeyRoute::x11)
    return std::make_unique<X11HotKey>(userTime);
  auto hotKey = std::make_unique<PortalHotKey>();
  QObject::connect(hotKey.get(), &PortalHotKey::activationTokenGiven, &windowSystem,
                   &WindowSystem::noteActivationToken);
  return hotKey;
}

} // namespace

Desktop::Desktop()
    : m_windowSystem(makeWindowSystem(m_userTime)),
      m_statusItem(m_appearance),
      m_hotKeyRoute(routeToHotKey()),
      m_hotKey(makeHotKey(m_hotKeyRoute, m_userTime, *m_windowSystem)) {
  connect(m_hotKey.get(), &GlobalHotKey::failed, this, [this] { m_hasHotKey = false; });
  connect(m_hotKey.get(), &GlobalHotKey::installed, this, [this] { m_hasHotKey = true; });
}

Desktop::~Desktop() = default;

void Desktop::start() {
  m_appearance.start();
  m_statusItem.start();
  m_application.start();
}

DesktopCapabilities Desktop::capabilities() const {
  DesktopCapabilities capabilities = windowCapabilities();
  capabilities.statusItem = m_statusItem.route();
  capabilities.hotKey = m_hasHotKey ? m_hotKeyRoute : HotKeyRoute::none;
  return capabilities;
}

} // namespace notlet
