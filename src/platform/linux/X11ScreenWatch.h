#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include "platform/linux/X11Connection.h"

class QScreen;

namespace notlet {

/// Knows what Qt does not tell about the monitors of the X server.
class X11ScreenWatch final : public QObject, private QAbstractNativeEventFilter {
  Q_OBJECT

 public:
  explicit X11ScreenWatch(const X11Connection& connection);
  ~X11ScreenWatch() override;

  /// Whether this is what Qt keeps while no monitor is connected.
  [[nodiscard]] bool isStandIn(const QScreen& screen) const;

 Q_SIGNALS:
  /// The server has spoken of a change, and Qt is about to hear of it. Also when the last monitor goes, of
  /// which Qt says nothing.
  void changing();

 private:
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  bool m_knowsMonitors = false;
  int m_firstEvent = 0;
};

} // namespace notlet
