#pragma once

#include <cstdint>
#include <vector>

#include "platform/linux/X11Connection.h"

namespace notlet {

/// Where Control+Super+J is on the keyboard as it is laid out at the moment.
struct X11KeyBinding {
  xcb_keycode_t key = 0;
  /// The bits of Control and Super.
  std::uint16_t modifiers = 0;
  /// The bits of Caps Lock, Num Lock and Scroll Lock, which must not make a difference.
  std::uint16_t locks = 0;

  bool operator==(const X11KeyBinding&) const = default;

  /// `modifiers` together with each combination of the locks.
  [[nodiscard]] std::vector<std::uint16_t> modifierCombinations() const;

  /// Looks the keys up in the server's keymap. J is looked for in the layout in use, then in the others; on
  /// keyboards without it its usual place counts.
  [[nodiscard]] static X11KeyBinding find(const X11Connection& connection);
};

} // namespace notlet
