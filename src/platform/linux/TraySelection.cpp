#include "platform/linux/TraySelection.h"

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <QGuiApplication>
#include <cstdlib>
#include <string_view>

namespace notlet {

namespace {

constexpr std::string_view selectionName = "_NET_SYSTEM_TRAY_S0";

template<typename T>
using Reply = std::unique_ptr<T, decltype([](T* reply) { std::free(reply); })>;

constexpr std::uint8_t eventNumberOf(const xcb_generic_event_t& event) {
  constexpr std::uint8_t sentBySomebody = 0x80;
  return event.response_type & static_cast<std::uint8_t>(~sentBySomebody);
}

} // namespace

TraySelection::TraySelection(QObject* parent) : QObject(parent) {
}

TraySelection::~TraySelection() = default;

void TraySelection::start() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  // The offscreen platform has the interface but no connection.
  xcb_connection_t* connection = x11 ? x11->connection() : nullptr;
  if (!connection || m_selection != 0)
    return;
  const auto atomAsked = xcb_intern_atom(connection, false, selectionName.size(), selectionName.data());
  const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection, atomAsked, nullptr));
  if (!atom)
    return;
  m_selection = atom->atom;
  // Before the first look, so that no change falls between the two.
  watchOwner(connection);
  const auto ownerAsked = xcb_get_selection_owner(connection, m_selection);
  const Reply<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(connection, ownerAsked, nullptr));
  setOwner(owner ? owner->owner : XCB_NONE);
}

void TraySelection::watchOwner(xcb_connection_t* connection) {
  const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
  if (!extension || extension->present == 0)
    return;
  // A client has to name a version before it may use the extension.
  const auto versionAsked =
      xcb_xfixes_query_version(connection, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
  const Reply<xcb_xfixes_query_version_reply_t> version(
      xcb_xfixes_query_version_reply(connection, versionAsked, nullptr));
  if (!version)
    return;
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  xcb_xfixes_select_selection_input(connection, root, m_selection,
                                    XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                        XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                        XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
  m_eventNumber = extension->first_event + XCB_XFIXES_SELECTION_NOTIFY;
  qGuiApp->installNativeEventFilter(this);
}

bool TraySelection::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
  const auto& event = *static_cast<const xcb_generic_event_t*>(message);
  if (eventNumberOf(event) != m_eventNumber)
    return false;
  const auto& notice = *static_cast<const xcb_xfixes_selection_notify_event_t*>(message);
  if (notice.selection == m_selection)
    setOwner(notice.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER ? notice.owner : XCB_NONE);
  return false;
}

void TraySelection::setOwner(std::uint32_t owner) {
  if (owner == m_owner)
    return;
  const bool takesOver = owner != 0 && m_owner != 0;
  m_owner = takesOver ? 0 : owner;
  Q_EMIT changed();
  if (takesOver)
    setOwner(owner);
}

} // namespace notlet
