#include "platform/linux/BusNotifications.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <chrono>

#include "platform/linux/BusNames.h"

namespace notlet {

namespace {

const QString notificationService = QStringLiteral("org.freedesktop.Notifications");
// The bus itself answers, so this is only ever used up by one that hangs.
constexpr std::chrono::milliseconds patience{300};

QDBusMessage askBus(const QDBusConnection& bus, const QString& method, const QVariantList& arguments = {}) {
  const QString name = QStringLiteral("org.freedesktop.DBus");
  QDBusMessage call =
      QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/DBus"), name, method);
  call.setArguments(arguments);
  return bus.call(call, QDBus::Block, static_cast<int>(patience.count()));
}

/// Whether the service runs or would be started by a call.
bool isServed(const QDBusConnection& bus) {
  const QDBusMessage owned = askBus(bus, QStringLiteral("NameHasOwner"), {notificationService});
  if (owned.type() != QDBusMessage::ReplyMessage)
    return false;
  if (owned.arguments().value(0).toBool())
    return true;
  const QDBusMessage startable = askBus(bus, QStringLiteral("ListActivatableNames"));
  return startable.arguments().value(0).toStringList().contains(notificationService);
}

} // namespace

BusNotifications::BusNotifications(BusSource bus) : m_bus(std::move(bus)) {
}

bool BusNotifications::show(const QString& title, const QString& text) {
  const QDBusConnection bus = m_bus();
  if (!bus.isConnected() || !isServed(bus))
    return false;
  QDBusMessage call =
      QDBusMessage::createMethodCall(notificationService, QStringLiteral("/org/freedesktop/Notifications"),
                                     notificationService, QStringLiteral("Notify"));
  constexpr uint replacesNone = 0;
  constexpr int serviceDecidesHowLong = -1;
  const QVariantMap hints = {{QStringLiteral("desktop-entry"), BusNames::service}};
  // The text may hold markup for the service, so what looks like it is escaped.
  call << QStringLiteral("Notlet") << replacesNone << QStringLiteral("notlet") << title
       << text.toHtmlEscaped() << QStringList() << hints << serviceDecidesHowLong;
  bus.asyncCall(call);
  return true;
}

} // namespace notlet
