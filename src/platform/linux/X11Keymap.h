#pragma once

#include <memory>
#include <xkbcommon/xkbcommon.h>

#include "platform/linux/X11Connection.h"

namespace notlet {

struct XkbKeymapRelease {
  void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
};
using XkbKeymap = std::unique_ptr<xkb_keymap, XkbKeymapRelease>;

/// The keymap of the server's keyboard, and which of its layouts is in use.
struct X11Keymap {
  /// Null when the server tells none.
  XkbKeymap keymap;
  xkb_layout_index_t layoutInUse = 0;

  [[nodiscard]] static X11Keymap ask(const X11Connection& connection);

  /// Whether the event says that the keymap is another one now. Qt has asked the server for such events.
  [[nodiscard]] static bool isChange(const X11Connection& connection, const xcb_generic_event_t& event);
  /// Whether it says that another of its layouts is in use.
  [[nodiscard]] static bool isOtherLayout(const X11Connection& connection, const xcb_generic_event_t& event);
};

/// The symbol that a key has at a level of a layout, if it is a single one.
[[nodiscard]] xkb_keysym_t symbolAt(xkb_keymap* keymap, xkb_keycode_t key, xkb_layout_index_t layout,
                                    xkb_level_index_t level);

} // namespace notlet
