#include "platform/linux/PortalAppearance.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

#include "platform/linux/PortalDesktop.h"

namespace notlet {

namespace {

const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");

const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnomeInterface = QStringLiteral("org.gnome.desktop.interface");
const QString plasmaGlobals = QStringLiteral("org.kde.kdeglobals.KDE");

using Settings = QMap<QString, QVariantMap>;

bool paletteIsDark() {
  const QPalette palette = QGuiApplication::palette();
  return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

bool isDark(const Settings& settings) {
  enum : uint { noPreference, dark, light };
  switch (settings.value(appearance).value(QStringLiteral("color-scheme")).toUInt()) {
  case dark:
    return true;
  case light:
    return false;
  default:
    return paletteIsDark();
  }
}

/// Desktops say it in ways of their own; the common one is recent.
bool reducesMotion(const Settings& settings) {
  const QVariant common = settings.value(appearance).value(QStringLiteral("reduced-motion"));
  const QVariant gnome = settings.value(gnomeInterface).value(QStringLiteral("enable-animations"));
  // Text, such as "0.5"; 0 is how the user turns animations off.
  const QVariant plasma = settings.value(plasmaGlobals).value(QStringLiteral("AnimationDurationFactor"));
  bool isNumber = false;
  const bool plasmaReduces = plasma.toDouble(&isNumber) <= 0 && isNumber;
  return common.toUInt() == 1 || (gnome.isValid() && !gnome.toBool()) || plasmaReduces;
}

/// Several desktops may answer through one portal; the first to name a setting is the one that counts.
Settings settingsOf(const QDBusArgument& answer) {
  Settings settings;
  answer.beginMap();
  while (!answer.atEnd()) {
    QString group;
    QVariantMap values;
    answer.beginMapEntry();
    answer >> group >> values;
    answer.endMapEntry();
    values.insert(settings[group]);
    settings[group] = values;
  }
  answer.endMap();
  return settings;
}

} // namespace

PortalAppearance::PortalAppearance(BusSource bus, QObject* parent)
    : m_bus(std::move(bus)), m_isDark(paletteIsDark()) {
  setParent(parent);
  qGuiApp->installEventFilter(this);
}

PortalAppearance::~PortalAppearance() = default;

void PortalAppearance::start() {
  QDBusConnection bus = m_bus();
  if (m_portalWatcher || !bus.isConnected())
    return;
  m_portalWatcher = std::make_unique<QDBusServiceWatcher>(PortalDesktop::service, bus,
                                                          QDBusServiceWatcher::WatchForRegistration);
  connect(m_portalWatcher.get(), &QDBusServiceWatcher::serviceRegistered, this,
          &PortalAppearance::introduceAndRead);
  // Qt knows the types of a slot by name, and only those that somebody has registered.
  qRegisterMetaType<QDBusVariant>();
  // No service is named: Qt would ask the bus for its owner and wait for the answer.
  bus.connect({}, PortalDesktop::path, settingsInterface, QStringLiteral("SettingChanged"), this,
              SLOT(changeSetting(QString, QString, QDBusVariant)));
  introduceAndRead();
}

void PortalAppearance::introduceAndRead() {
  PortalDesktop::introduce(m_bus());
  read();
}

void PortalAppearance::read() {
  const QDBusConnection bus = m_bus();
  const QDBusMessage call = PortalDesktop::call(settingsInterface, QStringLiteral("ReadAll"))
                            << QStringList{appearance, gnomeInterface, plasmaGlobals};
  auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    watcher->deleteLater();
    take(*watcher);
  });
}

void PortalAppearance::take(const QDBusPendingCallWatcher& reply) {
  const QDBusMessage message = reply.reply();
  if (message.type() != QDBusMessage::ReplyMessage || message.signature() != QLatin1String("a{sa{sv}}"))
    return;
  m_settings = settingsOf(message.arguments().at(0).value<QDBusArgument>());
  update();
}

// The change may be that of a desktop whose settings do not count.
void PortalAppearance::changeSetting(const QString& group, const QString&, const QDBusVariant&) {
  if (group == appearance || group == gnomeInterface || group == plasmaGlobals)
    read();
}

void PortalAppearance::update() {
  const bool wasDark = std::exchange(m_isDark, notlet::isDark(m_settings));
  const bool reducedMotion = std::exchange(m_reducesMotion, notlet::reducesMotion(m_settings));
  if (m_isDark != wasDark)
    Q_EMIT changed();
  if (m_reducesMotion != reducedMotion)
    Q_EMIT reducesMotionChanged();
}

bool PortalAppearance::eventFilter(QObject* receiver, QEvent* event) {
  if (event->type() == QEvent::ApplicationPaletteChange && receiver == qGuiApp)
    update();
  return Appearance::eventFilter(receiver, event);
}

} // namespace notlet
