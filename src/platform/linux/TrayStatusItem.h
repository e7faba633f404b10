#pragma once

#include <QTimer>
#include <memory>

#include "platform/DesktopCapabilities.h"
#include "platform/StatusItem.h"
#include "platform/linux/TrayNotifierHosts.h"
#include "platform/linux/TraySelection.h"

class QMenu;
class QSystemTrayIcon;

namespace notlet {

class Appearance;

/// What is known of the trays on the desktop.
struct TrayPresence {
  TrayNotifierHosts::Presence notifier = TrayNotifierHosts::Presence::unknown;
  bool xembed = false;
  /// A host of StatusNotifierItems has had the time it takes to start with the desktop.
  bool isWaitOver = false;
  /// The kind of the first icon. Qt makes all later ones of the same kind.
  StatusItemRoute first = StatusItemRoute::none;
};

/// Where the icon is to go. StatusNotifierItem is preferred.
[[nodiscard]] StatusItemRoute trayRoute(const TrayPresence& presence);

/// The status item in the desktop's tray, there as long as a tray is.
///
/// Left click: clicked(); middle click: the quick notlet; right click: the menu. Under StatusNotifierItem the
/// place of the icon is not known.
class TrayStatusItem final : public StatusItem {
  Q_OBJECT

 public:
  explicit TrayStatusItem(const Appearance& appearance, BusSource bus = sessionBus,
                          QObject* parent = nullptr);
  ~TrayStatusItem() override;

  /// Looks for trays, without waiting for answers of the bus. To be called when the first window is painted.
  void start();

  [[nodiscard]] bool isShown() const override { return m_icon != nullptr; }
  [[nodiscard]] std::optional<QRect> area() const override;
  [[nodiscard]] StatusItemRoute route() const { return m_route; }
  /// The menu of the icon that is shown, if any.
  [[nodiscard]] QMenu* menu() const { return m_menu.get(); }

 private:
  void update();
  void makeIcon();
  void dropIcon();
  void makeMenu();
  void lookAtPanel();
  void draw();

  const Appearance& m_appearance;
  TrayNotifierHosts m_notifierHosts;
  TraySelection m_selection;
  QTimer m_wait;
  bool m_isWaitOver = false;
  StatusItemRoute m_first = StatusItemRoute::none;
  StatusItemRoute m_route = StatusItemRoute::none;
  QTimer m_panelDraws;
  /// What the panel looks like, where that can be seen.
  std::optional<bool> m_isPanelDark;
  std::unique_ptr<QMenu> m_menu;
  std::unique_ptr<QSystemTrayIcon> m_icon;
};

} // namespace notlet
