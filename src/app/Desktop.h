#pragma once

#include <QObject>
#include <memory>

#include "platform/DesktopCapabilities.h"
#include "platform/GlobalHotKey.h"
#include "platform/WindowSystem.h"
#include "platform/linux/BusApplication.h"
#include "platform/linux/BusNotifications.h"
#include "platform/linux/BusWidgetTimelines.h"
#include "platform/linux/PortalAppearance.h"
#include "platform/linux/QtScreens.h"
#include "platform/linux/TrayStatusItem.h"
#include "platform/linux/X11UserTime.h"

namespace notlet {

/// The desktop that the program runs on, piece by piece.
class Desktop : public QObject {
  Q_OBJECT

 public:
  Desktop();
  ~Desktop() override;

  /// Begins to talk to the desktop's services, which takes time that the first window need not wait for.
  void start();

  [[nodiscard]] DesktopCapabilities capabilities() const;

  [[nodiscard]] WindowSystem& windowSystem() { return *m_windowSystem; }
  [[nodiscard]] QtScreens& screens() { return m_screens; }
  [[nodiscard]] PortalAppearance& appearance() { return m_appearance; }
  [[nodiscard]] TrayStatusItem& statusItem() { return m_statusItem; }
  [[nodiscard]] GlobalHotKey& hotKey() { return *m_hotKey; }
  [[nodiscard]] BusNotifications& notifications() { return m_notifications; }
  [[nodiscard]] BusWidgetTimelines& widgetTimelines() { return m_widgetTimelines; }
  /// Calls that come over the session bus.
  [[nodiscard]] BusApplication& application() { return m_application; }

 private:
  X11UserTime m_userTime;
  std::unique_ptr<WindowSystem> m_windowSystem;
  QtScreens m_screens;
  PortalAppearance m_appearance;
  TrayStatusItem m_statusItem;
  HotKeyRoute m_hotKeyRoute;
  std::unique_ptr<GlobalHotKey> m_hotKey;
  bool m_hasHotKey = true;
  BusNotifications m_notifications;
  BusWidgetTimelines m_widgetTimelines;
  BusApplication m_application;
};

} // namespace notlet
