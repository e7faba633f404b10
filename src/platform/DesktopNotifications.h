#pragma once

#include <QString>

namespace notlet {

/// Messages that the desktop shows outside the program's windows.
class DesktopNotifications {
 public:
  virtual ~DesktopNotifications() = default;
  /// Shows a message; false when the desktop has nobody who would.
  virtual bool show(const QString& title, const QString& text) = 0;
};

} // namespace notlet
