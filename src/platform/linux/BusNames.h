#pragma once

#include <QString>

/// How the program is known on the session bus.
namespace notlet::BusNames {

/// The name of the service, of the desktop entry and of the program before the portals.
inline const QString service = QStringLiteral("org.notlet.Notlet");
inline const QString path = QStringLiteral("/org/notlet/Notlet");
/// What the desktop calls to bring the program forward.
inline const QString applicationInterface = QStringLiteral("org.freedesktop.Application");
/// The program's own interface, which widgets listen to.
inline const QString ownInterface = QStringLiteral("org.notlet.Notlet1");
/// The action of the desktop entry that opens the quick capture.
inline const QString captureAction = QStringLiteral("capture");

} // namespace notlet::BusNames
