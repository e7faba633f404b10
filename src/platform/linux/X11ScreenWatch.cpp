#include "platform/linux/X11ScreenWatch.h"

#include <QCoreApplication>
#include <QScreen>
#include <string_view>

namespace notlet {

namespace {

/// How many kinds of events the extension has.
constexpr int eventKinds = 2;

} // namespace

X11ScreenWatch::X11ScreenWatch(const X11Connection& connection) {
  constexpr std::string_view extension = "RANDR";
  const auto reply = owned(xcb_query_extension_reply(
      connection.handle,
      xcb_query_extension(connection.handle, static_cast<std::uint16_t>(extension.size()), extension.data()),
      nullptr));
  if (!reply || reply->present == 0)
    return;
  m_knowsMonitors = true;
  m_firstEvent = reply->first_event;
  qApp->installNativeEventFilter(this);
}

X11ScreenWatch::~X11ScreenWatch() = default;

// Qt names a screen without a monitor like the display, ":0.0". On servers that know nothing of monitors that
// is the real one.
bool X11ScreenWatch::isStandIn(const QScreen& screen) const {
  return m_knowsMonitors && screen.name().contains(u':');
}

// Qt has asked the server for these events.
bool X11ScreenWatch::nativeEventFilter(const QByteArray& type, void* message, qintptr* /*result*/) {
  if (type != "xcb_generic_event_t")
    return false;
  const int kind = eventType(*static_cast<const xcb_generic_event_t*>(message)) - m_firstEvent;
  if (kind >= 0 && kind < eventKinds)
    Q_EMIT changing();
  return false;
}

} // namespace notlet
