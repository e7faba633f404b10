#pragma once

#include <poll.h>
#include <xcb/damage.h>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

using Clock = std::chrono::steady_clock;
using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};
template<typename Reply>
using ReplyPointer = std::unique_ptr<Reply, FreeReply>;
using Event = ReplyPointer<xcb_generic_event_t>;

struct FreeSymbols {
  void operator()(xcb_key_symbols_t* symbols) const { xcb_key_symbols_free(symbols); }
};
using KeySymbols = std::unique_ptr<xcb_key_symbols_t, FreeSymbols>;

double milliseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

/// The X server as seen by somebody who watches windows appear, become active and change.
class WatchedScreen {
 public:
  WatchedScreen() : m_connection(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(m_connection))
      throw std::runtime_error("no display");
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &mask);
    free(xcb_damage_query_version_reply(m_connection, xcb_damage_query_version(m_connection, 1, 1), nullptr));
    m_damageEvent = xcb_get_extension_data(m_connection, &xcb_damage_id)->first_event;
    m_activeAtom = atom("_NET_ACTIVE_WINDOW");
    m_nameAtom = atom("_NET_WM_NAME");
    xcb_flush(m_connection);
  }
  ~WatchedScreen() { xcb_disconnect(m_connection); }
  WatchedScreen(const WatchedScreen&) = delete;
  WatchedScreen& operator=(const WatchedScreen&) = delete;

  /// The next event before the deadline. Windows are watched from their creation on, since they may be
  /// painted before anybody knows them to be the right ones.
  Event next(Clock::time_point deadline) {
    for (;;) {
      if (Event event{xcb_poll_for_event(m_connection)}) {
        if ((event->response_type & 0x7f) == XCB_CREATE_NOTIFY)
          watch(reinterpret_cast<const xcb_create_notify_event_t*>(event.get())->window);
        return event;
      }
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
      if (left <= 0ms)
        return nullptr;
      pollfd descriptor{xcb_get_file_descriptor(m_connection), POLLIN, 0};
      poll(&descriptor, 1, static_cast<int>(left.count()));
    }
  }

  [[nodiscard]] bool isDamage(const Event& event) const {
    return (event->response_type & 0x7f) == m_damageEvent + XCB_DAMAGE_NOTIFY;
  }
  [[nodiscard]] bool isInLowerHalf(const Event& event) const {
    const auto& damage = *reinterpret_cast<const xcb_damage_notify_event_t*>(event.get());
    return damage.area.y + damage.area.height > damage.geometry.height / 2;
  }
  [[nodiscard]] xcb_drawable_t damaged(const Event& event) const {
    return reinterpret_cast<const xcb_damage_notify_event_t*>(event.get())->drawable;
  }
  [[nodiscard]] xcb_window_t activeWindow() {
    const auto value = property(m_root, m_activeAtom);
    xcb_window_t window = XCB_NONE;
    if (value.size() >= sizeof window)
      std::memcpy(&window, value.data(), sizeof window);
    return window;
  }
  [[nodiscard]] std::string nameOf(xcb_window_t window) { return property(window, m_nameAtom); }

  void fake(std::uint8_t kind, std::uint8_t detail) {
    xcb_test_fake_input(m_connection, kind, detail, XCB_CURRENT_TIME, m_root, 0, 0, 0);
  }
  void flush() { xcb_flush(m_connection); }
  /// The key that types a keysym, by the keyboard's first two columns.
  xcb_keycode_t keycodeOf(xcb_keysym_t symbol) {
    KeySymbols symbols{xcb_key_symbols_alloc(m_connection)};
    const ReplyPointer<xcb_keycode_t> codes{xcb_key_symbols_get_keycode(symbols.get(), symbol)};
    return codes ? *codes : XCB_NO_SYMBOL;
  }
  /// To a place in the window; what is negative counts from its far edges.
  void movePointerTo(xcb_window_t window, int x, int y) {
    const ReplyPointer<xcb_get_geometry_reply_t> geometry{
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr)};
    if (!geometry)
      return;
    const int right = x < 0 ? x + geometry->width : x;
    const int down = y < 0 ? y + geometry->height : y;
    xcb_warp_pointer(m_connection, XCB_NONE, window, 0, 0, 0, 0, static_cast<std::int16_t>(right),
                     static_cast<std::int16_t>(down));
    xcb_flush(m_connection);
  }

 private:
  xcb_atom_t atom(std::string_view name) {
    const auto cookie =
        xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const ReplyPointer<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(m_connection, cookie, nullptr)};
    return reply ? reply->atom : XCB_NONE;
  }
  void watch(xcb_window_t window) {
    const xcb_damage_damage_t damage = xcb_generate_id(m_connection);
    xcb_damage_create(m_connection, damage, window, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    xcb_flush(m_connection);
  }
  std::string property(xcb_window_t window, xcb_atom_t name) {
    const auto cookie = xcb_get_property(m_connection, 0, window, name, XCB_ATOM_ANY, 0, 64);
    const ReplyPointer<xcb_get_property_reply_t> reply{xcb_get_property_reply(m_connection, cookie, nullptr)};
    if (!reply)
      return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
  }

  xcb_connection_t* m_connection;
  xcb_window_t m_root = XCB_NONE;
  std::uint8_t m_damageEvent = 0;
  xcb_atom_t m_activeAtom = XCB_NONE;
  xcb_atom_t m_nameAtom = XCB_NONE;
};
