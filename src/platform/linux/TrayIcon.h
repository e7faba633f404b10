#pragma once

#include <QIcon>

namespace notlet {

/// The program's icon for the tray: three dots, drawn for the size that is asked for.
///
/// The dots are white for a dark panel and black for a light one, with a faint rim of the other colour, so
/// that they can be told from a panel that is not as it was thought. With a name the desktop may take the
/// icon of that name from its theme instead, and tint it.
[[nodiscard]] QIcon trayIcon(bool isPanelDark, const QString& name = {});

} // namespace notlet
