#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QPoint>

#include "platform/linux/X11Connection.h"

namespace notlet {

/// Tells of presses of the mouse buttons in any window of the X server, whoever gets them. The wheel does not
/// count.
class X11MouseWatch final : public QObject, private QAbstractNativeEventFilter {
  Q_OBJECT

 public:
  explicit X11MouseWatch(const X11Connection& connection);
  ~X11MouseWatch() override;

  /// Whether the server can tell at all.
  [[nodiscard]] static bool isPossible(const X11Connection& connection);
  /// Costs nothing while off, which it is at first.
  void setOn(bool isOn);

 Q_SIGNALS:
  /// In Qt's screen coordinates.
  void pressed(const QPoint& position);

 private:
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  X11Connection m_connection;
  bool m_isOn = false;
};

} // namespace notlet
