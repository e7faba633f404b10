#include "platform/linux/X11CompositorWatch.h"

#include <xcb/xfixes.h>

#include <QCoreApplication>
#include <string>

namespace notlet {

namespace {

constexpr std::uint32_t versionMajor = 5;

/// The selection that a compositor owns while it runs, as the window manager hints have it.
std::string selectionName(int screenNumber) {
  return "_NET_WM_CM_S" + std::to_string(screenNumber);
}

bool hasOwner(const X11Connection& connection, xcb_atom_t selection) {
  const auto reply = owned(xcb_get_selection_owner_reply(
      connection.handle, xcb_get_selection_owner(connection.handle, selection), nullptr));
  return reply && reply->owner != XCB_NONE;
}

} // namespace

X11CompositorWatch::X11CompositorWatch(const X11Connection& connection)
    : m_connection(connection), m_selection(connection.atom(selectionName(connection.screenNumber))) {
  const auto* xfixes = xcb_get_extension_data(connection.handle, &xcb_xfixes_id);
  if (xfixes != nullptr && xfixes->present != 0) {
    m_selectionEvent = xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY;
    const auto version = owned(xcb_xfixes_query_version_reply(
        connection.handle, xcb_xfixes_query_version(connection.handle, versionMajor, 0), nullptr));
    xcb_xfixes_select_selection_input(connection.handle, connection.root, m_selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    qApp->installNativeEventFilter(this);
  }
  // After the events were asked for, so that no change falls in between.
  m_isCompositing = hasOwner(connection, m_selection);
}

X11CompositorWatch::~X11CompositorWatch() = default;

bool X11CompositorWatch::nativeEventFilter(const QByteArray& type, void* message, qintptr* /*result*/) {
  if (type != "xcb_generic_event_t")
    return false;
  const auto& event = *static_cast<const xcb_generic_event_t*>(message);
  if (eventType(event) != m_selectionEvent)
    return false;
  const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
  // A window that is destroyed or whose program ends is still named as the owner.
  const bool isCompositing =
      change.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER && change.owner != XCB_NONE;
  if (change.selection == m_selection && isCompositing != m_isCompositing) {
    m_isCompositing = isCompositing;
    Q_EMIT changed();
  }
  return false;
}

} // namespace notlet
