#include "platform/linux/TrayStatusItem.h"

#include <QGuiApplication>
#include <QMenu>
#include <QPixmap>
#include <QScreen>
#include <QStandardPaths>
#include <QSystemTrayIcon>
#include <chrono>

#include "platform/Appearance.h"
#include "platform/linux/TrayIcon.h"

namespace notlet {

namespace {

// From the first service of a starting desktop to its panel.
constexpr std::chrono::seconds patience{3};
// From asking for a place in the panel to standing there, or from one look of the panel to another.
constexpr std::chrono::milliseconds panelDraws{500};

bool isDesktop(const QString& name) {
  return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':')).contains(name);
}

/// The name under which the desktop finds the icon in its theme and tints it for its panel; none where it is
/// not installed, or where symbolic icons are shown as they are.
QString symbolicName() {
  QString name = QStringLiteral("org.notlet.Notlet-symbolic");
  const bool tints = isDesktop(QStringLiteral("KDE")) || isDesktop(QStringLiteral("GNOME"));
  const QString file = QStringLiteral("icons/hicolor/symbolic/apps/%1.svg").arg(name);
  if (!tints || QStandardPaths::locate(QStandardPaths::GenericDataLocation, file).isEmpty())
    return {};
  return name;
}

/// Whether the panel is likely to be dark: GNOME's always is, others follow the desktop.
bool isPanelDark(const Appearance& appearance) {
  return isDesktop(QStringLiteral("GNOME")) || appearance.isDark();
}

/// Whether the screen is dark at a point; nothing when it cannot be looked at.
std::optional<bool> isScreenDark(const QPoint& point) {
  QScreen* screen = QGuiApplication::screenAt(point);
  if (!screen)
    return std::nullopt;
  const QPoint inScreen = point - screen->geometry().topLeft();
  const QImage image = screen->grabWindow(0, inScreen.x(), inScreen.y(), 1, 1).toImage();
  if (image.isNull())
    return std::nullopt;
  constexpr int middle = 128;
  return qGray(image.pixel(0, 0)) < middle;
}

} // namespace

StatusItemRoute trayRoute(const TrayPresence& presence) {
  using Presence = TrayNotifierHosts::Presence;
  const bool mayUseNotifier = presence.first != StatusItemRoute::xembed;
  const bool mayUseXembed = presence.first != StatusItemRoute::statusNotifierItem;
  if (mayUseNotifier && presence.notifier == Presence::host)
    return StatusItemRoute::statusNotifierItem;
  // Desktops whose panel shows StatusNotifierItems offer the older kind too, and sooner.
  const bool mayStillCome =
      presence.notifier == Presence::unknown || presence.notifier == Presence::watcherWithoutHost;
  const bool isDecided = !mayUseNotifier || !mayStillCome || presence.isWaitOver;
  if (mayUseXembed && presence.xembed && isDecided)
    return StatusItemRoute::xembed;
  return StatusItemRoute::none;
}

TrayStatusItem::TrayStatusItem(const Appearance& appearance, BusSource bus, QObject* parent)
    : m_appearance(appearance), m_notifierHosts(std::move(bus)) {
  setParent(parent);
  connect(&m_notifierHosts, &TrayNotifierHosts::changed, this, &TrayStatusItem::update);
  connect(&m_selection, &TraySelection::changed, this, &TrayStatusItem::update);
  connect(&m_appearance, &Appearance::changed, this, &TrayStatusItem::draw);
  // A panel may follow the desktop, in its own time.
  connect(&m_appearance, &Appearance::changed, this, [this] { m_panelDraws.start(panelDraws); });
  m_panelDraws.setSingleShot(true);
  connect(&m_panelDraws, &QTimer::timeout, this, &TrayStatusItem::lookAtPanel);
  m_wait.setSingleShot(true);
  connect(&m_wait, &QTimer::timeout, this, [this] {
    m_isWaitOver = true;
    update();
  });
}

TrayStatusItem::~TrayStatusItem() {
  // Without a word: whoever listens may be gone already.
  m_icon.reset();
}

void TrayStatusItem::start() {
  m_wait.start(patience);
  m_selection.start();
  m_notifierHosts.start();
}

std::optional<QRect> TrayStatusItem::area() const {
  if (!m_icon)
    return std::nullopt;
  const QRect area = m_icon->geometry();
  return area.isValid() ? std::optional(area) : std::nullopt;
}

void TrayStatusItem::update() {
  const StatusItemRoute route =
      trayRoute({m_notifierHosts.presence(), m_selection.isOwned(), m_isWaitOver, m_first});
  if (std::exchange(m_route, route) == route)
    return;
  dropIcon();
  if (route != StatusItemRoute::none)
    makeIcon();
  Q_EMIT shownChanged();
}

void TrayStatusItem::makeIcon() {
  m_first = m_route;
  makeMenu();
  m_icon = std::make_unique<QSystemTrayIcon>();
  m_icon->setToolTip(QStringLiteral("Notlet"));
  m_icon->setContextMenu(m_menu.get());
  connect(m_icon.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
    if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
      Q_EMIT clicked();
    else if (reason == QSystemTrayIcon::MiddleClick)
      Q_EMIT quickNotletChosen();
  });
  draw();
  m_icon->show();
  m_panelDraws.start(panelDraws);
}

void TrayStatusItem::dropIcon() {
  m_isPanelDark.reset();
  m_icon.reset();
  m_menu.reset();
}

void TrayStatusItem::makeMenu() {
  m_menu = std::make_unique<QMenu>();
  m_menu->addAction(QStringLiteral("Quick Notlet"), this, &StatusItem::quickNotletChosen);
  m_menu->addAction(QStringLiteral("Open Notlet"), this, &StatusItem::openChosen);
  m_menu->addSeparator();
  m_menu->addAction(QStringLiteral("Settings…"), this, &StatusItem::settingsChosen);
  m_menu->addSeparator();
  m_menu->addAction(QStringLiteral("Quit Notlet"), this, &StatusItem::quitChosen);
}

// The corner of the icon's place shows the panel.
void TrayStatusItem::lookAtPanel() {
  const std::optional<QRect> place = area();
  const std::optional<bool> isDark = place ? isScreenDark(place->topLeft()) : std::nullopt;
  if (std::exchange(m_isPanelDark, isDark) != isDark)
    draw();
}

void TrayStatusItem::draw() {
  if (m_icon)
    m_icon->setIcon(trayIcon(m_isPanelDark.value_or(isPanelDark(m_appearance)), symbolicName()));
}

} // namespace notlet
