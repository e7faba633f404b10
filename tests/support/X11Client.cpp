#include "support/X11Client.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <ranges>
#include <span>
#include <thread>

namespace notlet {

namespace {

struct Free {
  void operator()(void* reply) const { std::free(reply); }
};

template<typename Reply>
std::unique_ptr<Reply, Free> owned(Reply* reply) {
  return std::unique_ptr<Reply, Free>(reply);
}

} // namespace

X11Client::X11Client(const std::string& display) : m_connection(xcb_connect(display.c_str(), nullptr)) {
  if (xcb_connection_has_error(m_connection) != 0) {
    std::fprintf(stderr, "There is no X server on %s.\n", display.c_str());
    std::exit(1);
  }
  m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
}

X11Client::~X11Client() {
  xcb_disconnect(m_connection);
}

void X11Client::sync() const {
  owned(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

// A hand needs time, in milliseconds: no two events have the same.
void X11Client::input(std::uint8_t type, std::uint8_t detail, std::int16_t x, std::int16_t y) const {
  constexpr std::uint32_t pause = 2;
  xcb_test_fake_input(m_connection, type, detail, pause, m_root, x, y, 0);
  sync();
}

void X11Client::pressKey(xcb_keycode_t key) const {
  input(XCB_KEY_PRESS, key);
}

void X11Client::releaseKey(xcb_keycode_t key) const {
  input(XCB_KEY_RELEASE, key);
}

void X11Client::typeKeys(const std::vector<xcb_keycode_t>& keys) const {
  for (const xcb_keycode_t key : keys)
    pressKey(key);
  for (const xcb_keycode_t key : std::views::reverse(keys))
    releaseKey(key);
}

void X11Client::click(std::int16_t x, std::int16_t y, std::uint8_t button) const {
  input(XCB_MOTION_NOTIFY, 0, x, y);
  input(XCB_BUTTON_PRESS, button);
  input(XCB_BUTTON_RELEASE, button);
}

bool X11Client::grabKey(xcb_keycode_t key, std::uint16_t modifiers) const {
  const auto cookie =
      xcb_grab_key_checked(m_connection, 0, m_root, modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  return !owned(xcb_request_check(m_connection, cookie));
}

void X11Client::ungrabKey(xcb_keycode_t key, std::uint16_t modifiers) const {
  xcb_ungrab_key(m_connection, key, m_root, modifiers);
  sync();
}

void X11Client::changeModifierKeys(int modifier, xcb_keycode_t from, xcb_keycode_t to) const {
  const auto mapping =
      owned(xcb_get_modifier_mapping_reply(m_connection, xcb_get_modifier_mapping(m_connection), nullptr));
  const std::size_t width = mapping->keycodes_per_modifier;
  const std::span keys(xcb_get_modifier_mapping_keycodes(mapping.get()), 8 * width);
  const auto row = keys.subspan(static_cast<std::size_t>(modifier) * width, width);
  std::ranges::replace(row, from, xcb_keycode_t{0});
  if (to != 0)
    *std::ranges::find(row, xcb_keycode_t{0}) = to;
  owned(xcb_set_modifier_mapping_reply(
      m_connection, xcb_set_modifier_mapping(m_connection, mapping->keycodes_per_modifier, keys.data()),
      nullptr));
}

void X11Client::addModifierKey(int modifier, xcb_keycode_t key) const {
  changeModifierKeys(modifier, key, key);
}

void X11Client::removeModifierKey(int modifier, xcb_keycode_t key) const {
  changeModifierKeys(modifier, key, 0);
}

xcb_window_t X11Client::makeWindow() const {
  const xcb_window_t window = xcb_generate_id(m_connection);
  const std::uint32_t events = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_root, 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
  return window;
}

void X11Client::ownSelection(std::string_view name) const {
  xcb_set_selection_owner(m_connection, makeWindow(), atom(name), XCB_CURRENT_TIME);
  sync();
}

void X11Client::giveUpSelection(std::string_view name) const {
  xcb_set_selection_owner(m_connection, XCB_NONE, atom(name), XCB_CURRENT_TIME);
  sync();
}

xcb_window_t X11Client::showWindow(std::int16_t x, std::int16_t y, std::uint16_t width,
                                   std::uint16_t height) const {
  const xcb_window_t window = makeWindow();
  const std::uint32_t place[] = {static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), width, height};
  xcb_configure_window(
      m_connection, window,
      XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, place);
  constexpr std::uint32_t userPlace = 1;
  std::uint32_t hints[18] = {userPlace};
  xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                      XCB_ATOM_WM_SIZE_HINTS, 32, 18, hints);
  xcb_map_window(m_connection, window);
  sync();
  return window;
}

void X11Client::takeKeyboard(xcb_window_t window) const {
  xcb_set_input_focus(m_connection, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
  sync();
}

xcb_window_t X11Client::keyboardOwner() const {
  return owned(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr))->focus;
}

void X11Client::noteUse(xcb_window_t window) const {
  const xcb_atom_t marker = atom("_NOTLET_TEST_TIME");
  xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, marker, XCB_ATOM_CARDINAL, 32, 0, nullptr);
  xcb_flush(m_connection);
  while (const auto event = owned(xcb_wait_for_event(m_connection))) {
    const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
    if (change.response_type != XCB_PROPERTY_NOTIFY || change.atom != marker)
      continue;
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_USER_TIME"),
                        XCB_ATOM_CARDINAL, 32, 1, &change.time);
    return sync();
  }
}

bool X11Client::isShown(xcb_window_t window) const {
  const auto reply = owned(xcb_get_window_attributes_reply(
      m_connection, xcb_get_window_attributes(m_connection, window), nullptr));
  return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

// A window that is shown while the window manager starts may escape its notice.
bool X11Client::hasWindowManager() const {
  constexpr int tries = 40;
  const xcb_window_t window = showWindow(0, 0, 1, 1);
  bool isManaged = false;
  for (int count = 0; count < tries && !isManaged; ++count) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    isManaged = !property(window, "WM_STATE").empty();
  }
  xcb_destroy_window(m_connection, window);
  sync();
  return isManaged;
}

xcb_window_t X11Client::activeWindow() const {
  const auto window = property(m_root, "_NET_ACTIVE_WINDOW");
  return window.empty() ? static_cast<xcb_window_t>(XCB_NONE) : window.front();
}

std::vector<std::uint32_t> X11Client::property(xcb_window_t window, std::string_view name) const {
  const auto reply = owned(xcb_get_property_reply(
      m_connection, xcb_get_property(m_connection, 0, window, atom(name), XCB_ATOM_ANY, 0, 1024), nullptr));
  if (!reply || reply->format != 32)
    return {};
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {first, first + reply->value_len};
}

std::string X11Client::text(xcb_window_t window, std::string_view name) const {
  const auto reply = owned(xcb_get_property_reply(
      m_connection, xcb_get_property(m_connection, 0, window, atom(name), XCB_ATOM_ANY, 0, 1024), nullptr));
  if (!reply || reply->format != 8)
    return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

xcb_atom_t X11Client::atom(std::string_view name) const {
  const auto cookie = xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
  return owned(xcb_intern_atom_reply(m_connection, cookie, nullptr))->atom;
}

bool X11Client::tookButtonPress() const {
  sync();
  bool pressed = false;
  while (const auto event = owned(xcb_poll_for_event(m_connection)))
    pressed = pressed || (event->response_type & 0x7f) == XCB_BUTTON_PRESS;
  return pressed;
}

} // namespace notlet
