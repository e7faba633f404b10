#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace notlet {

struct X11Free {
  void operator()(void* reply) const { std::free(reply); }
};

/// What the X server answered; null when it refused.
template<typename Reply>
using X11Reply = std::unique_ptr<Reply, X11Free>;

template<typename Reply>
[[nodiscard]] X11Reply<Reply> owned(Reply* reply) {
  return X11Reply<Reply>(reply);
}

/// An event as the event loop shows it, whether it came from the server or another program sent it.
[[nodiscard]] inline int eventType(const xcb_generic_event_t& event) {
  constexpr int sentByProgram = 0x80;
  return event.response_type & ~sentByProgram;
}

/// The connection to the X server that belongs to Qt, with the root window under which Qt puts its windows.
/// Valid as long as the application object.
struct X11Connection {
  xcb_connection_t* handle = nullptr;
  xcb_window_t root = XCB_NONE;
  int screenNumber = 0;

  /// Nothing when the program does not run on an X server.
  [[nodiscard]] static std::optional<X11Connection> ofApplication();

  /// Atoms for names, in their order, in one exchange with the server.
  [[nodiscard]] std::vector<xcb_atom_t> atoms(std::span<const std::string_view> names) const;
  [[nodiscard]] xcb_atom_t atom(std::string_view name) const;

  /// The window that typing goes to, or XCB_INPUT_FOCUS_POINTER_ROOT; nothing when the server does not say.
  [[nodiscard]] std::optional<xcb_window_t> keyboardOwner() const;

  /// A property that is a list of 32-bit values; empty when it is absent or something else.
  [[nodiscard]] std::vector<std::uint32_t> property(xcb_window_t window, xcb_atom_t name,
                                                    xcb_atom_t type) const;
  /// `mode` is XCB_PROP_MODE_REPLACE or XCB_PROP_MODE_APPEND.
  void setProperty(std::uint8_t mode, xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                   std::span<const std::uint32_t> values) const;
  /// An empty text takes the property away.
  void setText(xcb_window_t window, xcb_atom_t name, xcb_atom_t type, std::string_view text) const;
  /// Has the mouse meet the window in these parts only; without any in all of it.
  void setInputShape(xcb_window_t window, std::span<const xcb_rectangle_t> parts) const;
  /// Asks the window manager something about a window.
  void sendToWindowManager(xcb_window_t window, xcb_atom_t request,
                           const std::array<std::uint32_t, 5>& values) const;
};

} // namespace notlet
