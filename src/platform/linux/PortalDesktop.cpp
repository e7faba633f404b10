#include "platform/linux/PortalDesktop.h"

#include <QDBusPendingCall>

#include "platform/linux/BusNames.h"

namespace notlet::PortalDesktop {

QDBusMessage call(const QString& interface, const QString& method) {
  return QDBusMessage::createMethodCall(service, path, interface, method);
}

void introduce(const QDBusConnection& bus) {
  QDBusMessage message =
      call(QStringLiteral("org.freedesktop.host.portal.Registry"), QStringLiteral("Register"));
  message << BusNames::service << QVariantMap();
  bus.asyncCall(message);
}

QString handlePath(const QDBusConnection& bus, const QString& kind, const QString& token) {
  QString sender = bus.baseService().mid(1);
  sender.replace(QLatin1Char('.'), QLatin1Char('_'));
  return QStringLiteral("%1/%2/%3/%4").arg(path, kind, sender, token);
}

} // namespace notlet::PortalDesktop
