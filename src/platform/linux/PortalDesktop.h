#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>

/// The desktop's portal: one service with many interfaces.
namespace notlet::PortalDesktop {

inline const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
inline const QString path = QStringLiteral("/org/freedesktop/portal/desktop");

[[nodiscard]] QDBusMessage call(const QString& interface, const QString& method);

/// Tells the portal which program this connection belongs to, so that what the user allows it is remembered
/// however it was started. To be called before any other call, and again when the portal was restarted;
/// portals that do not know it, or that know it already, are fine.
void introduce(const QDBusConnection& bus);

/// The path of a request or session of this connection, as the portal makes it from a token.
[[nodiscard]] QString handlePath(const QDBusConnection& bus, const QString& kind, const QString& token);

} // namespace notlet::PortalDesktop
