#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include "platform/linux/X11Connection.h"

namespace notlet {

/// Knows whether a compositor blends translucent windows on the X screen.
class X11CompositorWatch final : public QObject, private QAbstractNativeEventFilter {
  Q_OBJECT

 public:
  explicit X11CompositorWatch(const X11Connection& connection);
  ~X11CompositorWatch() override;

  [[nodiscard]] bool isCompositing() const { return m_isCompositing; }

 Q_SIGNALS:
  void changed();

 private:
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  X11Connection m_connection;
  xcb_atom_t m_selection = XCB_ATOM_NONE;
  int m_selectionEvent = -1;
  bool m_isCompositing = false;
};

} // namespace notlet
