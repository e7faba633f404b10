#pragma once

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QTest>
#include <QWindow>

#include "platform/linux/X11Connection.h"

namespace notlet {

/// Lets a test wait until Qt has seen all that has happened on the X server so far.
class X11Marker final : private QAbstractNativeEventFilter {
 public:
  X11Marker() : m_atom(m_connection.atom("_NOTLET_TEST_MARKER")) {
    m_window.create();
    qApp->installNativeEventFilter(this);
  }

  /// False when Qt has stopped seeing events.
  [[nodiscard]] bool catchUp() {
    const auto window = static_cast<xcb_window_t>(m_window.winId());
    m_seen = false;
    m_connection.setProperty(XCB_PROP_MODE_REPLACE, window, m_atom, XCB_ATOM_CARDINAL, {});
    xcb_flush(m_connection.handle);
    const bool seen = QTest::qWaitFor([this] { return m_seen; });
    // What the events have left for the next turn.
    QTest::qWait(0);
    return seen;
  }

 private:
  bool nativeEventFilter(const QByteArray& /*type*/, void* message, qintptr* /*result*/) override {
    const auto& event = *static_cast<const xcb_generic_event_t*>(message);
    m_seen = m_seen || (eventType(event) == XCB_PROPERTY_NOTIFY &&
                        reinterpret_cast<const xcb_property_notify_event_t&>(event).atom == m_atom);
    return false;
  }

  X11Connection m_connection = X11Connection::ofApplication().value();
  xcb_atom_t m_atom;
  QWindow m_window;
  bool m_seen = false;
};

} // namespace notlet
