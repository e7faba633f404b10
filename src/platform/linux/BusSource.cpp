#include "platform/linux/BusSource.h"

#include <QFile>

namespace notlet {

QDBusConnection sessionBus() {
  // Without an address the bus library would start a bus of its own, and wait for it.
  const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
  const bool isThere = !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
                       (!runtime.isEmpty() && QFile::exists(runtime + QStringLiteral("/bus")));
  return isThere ? QDBusConnection::sessionBus() : QDBusConnection(QStringLiteral("no session bus"));
}

void listenForLoss(QDBusConnection bus, QObject* receiver, const char* slot) {
  bus.connect({}, QStringLiteral("/org/freedesktop/DBus/Local"), QStringLiteral("org.freedesktop.DBus.Local"),
              QStringLiteral("Disconnected"), receiver, slot);
}

} // namespace notlet
