#include "platform/linux/X11Connection.h"

#include <xcb/shape.h>
#include <xcb/xfixes.h>

#include <QGuiApplication>
#include <algorithm>

namespace notlet {

namespace {

xcb_window_t rootOfScreen(xcb_connection_t* connection, int number) {
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; number > 0 && screens.rem > 1; --number)
    xcb_screen_next(&screens);
  return screens.rem > 0 ? screens.data->root : XCB_NONE;
}

/// The screen that the display's name asks for; the first unless told otherwise.
int screenNumberOfDisplay() {
  char* host = nullptr;
  int display = 0;
  int screen = 0;
  if (xcb_parse_display(nullptr, &host, &display, &screen) == 0)
    return 0;
  std::free(host);
  return screen;
}

} // namespace

std::optional<X11Connection> X11Connection::ofApplication() {
  if (qGuiApp == nullptr)
    return std::nullopt;
  auto* application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (application == nullptr || application->connection() == nullptr ||
      xcb_connection_has_error(application->connection()) != 0)
    return std::nullopt;
  X11Connection found;
  found.handle = application->connection();
  found.screenNumber = screenNumberOfDisplay();
  found.root = rootOfScreen(found.handle, found.screenNumber);
  return found;
}

std::vector<xcb_atom_t> X11Connection::atoms(std::span<const std::string_view> names) const {
  std::vector<xcb_intern_atom_cookie_t> asked;
  for (const std::string_view name : names)
    asked.push_back(xcb_intern_atom(handle, 0, static_cast<std::uint16_t>(name.size()), name.data()));
  std::vector<xcb_atom_t> found;
  for (const auto cookie : asked) {
    const auto reply = owned(xcb_intern_atom_reply(handle, cookie, nullptr));
    found.push_back(reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE));
  }
  return found;
}

xcb_atom_t X11Connection::atom(std::string_view name) const {
  return atoms({&name, 1}).front();
}

std::optional<xcb_window_t> X11Connection::keyboardOwner() const {
  const auto reply = owned(xcb_get_input_focus_reply(handle, xcb_get_input_focus(handle), nullptr));
  return reply ? std::optional(reply->focus) : std::nullopt;
}

std::vector<std::uint32_t> X11Connection::property(xcb_window_t window, xcb_atom_t name,
                                                   xcb_atom_t type) const {
  constexpr std::uint32_t mostValues = 4096;
  const auto reply = owned(xcb_get_property_reply(
      handle, xcb_get_property(handle, 0, window, name, type, 0, mostValues), nullptr));
  constexpr int bitsPerValue = 32;
  if (!reply || reply->format != bitsPerValue || reply->type != type)
    return {};
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {first, first + reply->value_len};
}

void X11Connection::setProperty(std::uint8_t mode, xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                                std::span<const std::uint32_t> values) const {
  xcb_change_property(handle, mode, window, name, type, 32, static_cast<std::uint32_t>(values.size()),
                      values.data());
}

void X11Connection::setText(xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                            std::string_view text) const {
  if (text.empty())
    xcb_delete_property(handle, window, name);
  else
    xcb_change_property(handle, XCB_PROP_MODE_REPLACE, window, name, type, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
}

void X11Connection::setInputShape(xcb_window_t window, std::span<const xcb_rectangle_t> parts) const {
  const xcb_xfixes_region_t region = parts.empty() ? XCB_NONE : xcb_generate_id(handle);
  if (region != XCB_NONE)
    xcb_xfixes_create_region(handle, region, static_cast<std::uint32_t>(parts.size()), parts.data());
  xcb_xfixes_set_window_shape_region(handle, window, XCB_SHAPE_SK_INPUT, 0, 0, region);
  if (region != XCB_NONE)
    xcb_xfixes_destroy_region(handle, region);
}

void X11Connection::sendToWindowManager(xcb_window_t window, xcb_atom_t request,
                                        const std::array<std::uint32_t, 5>& values) const {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = request;
  std::ranges::copy(values, message.data.data32);
  xcb_send_event(handle, 0, root, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                 reinterpret_cast<const char*>(&message));
}

} // namespace notlet
