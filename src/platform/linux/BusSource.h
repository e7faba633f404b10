#pragma once

#include <QDBusConnection>
#include <functional>

namespace notlet {

/// Gives the bus on which the desktop's programs talk, connected or not. It is asked for on first use, so
/// that nobody waits for the bus while the first window is made.
using BusSource = std::function<QDBusConnection()>;

/// The bus of the user's session. Where none runs none is started; the connection is then not connected.
[[nodiscard]] QDBusConnection sessionBus();

/// Has a slot without arguments called when the bus goes away.
void listenForLoss(QDBusConnection bus, QObject* receiver, const char* slot);

} // namespace notlet
