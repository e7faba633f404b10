#include "platform/linux/X11KeyBinding.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <span>

#include "platform/linux/X11Keymap.h"

namespace notlet {

namespace {

constexpr xcb_keycode_t usualPlaceOfJ = 44;

/// Where the symbols are on the server's keyboard.
class Keyboard {
 public:
  explicit Keyboard(const X11Connection& connection) : m_keymap(X11Keymap::ask(connection)) {}

  [[nodiscard]] std::optional<xcb_keycode_t> keyTyping(xkb_keysym_t symbol) const {
    if (auto key = keyTyping(symbol, m_keymap.layoutInUse))
      return key;
    for (xkb_layout_index_t layout = 0; keymap() != nullptr && layout < xkb_keymap_num_layouts(keymap());
         ++layout)
      if (auto key = keyTyping(symbol, layout))
        return key;
    return std::nullopt;
  }

  [[nodiscard]] bool hasSymbol(xcb_keycode_t key, xkb_keysym_t symbol) const {
    if (keymap() == nullptr || key == 0)
      return false;
    for (xkb_layout_index_t layout = 0; layout < xkb_keymap_num_layouts_for_key(keymap(), key); ++layout)
      for (xkb_level_index_t level = 0; level < xkb_keymap_num_levels_for_key(keymap(), key, layout); ++level)
        if (symbolAt(keymap(), key, layout, level) == symbol)
          return true;
    return false;
  }

 private:
  [[nodiscard]] std::optional<xcb_keycode_t> keyTyping(xkb_keysym_t symbol, xkb_layout_index_t layout) const {
    if (keymap() == nullptr)
      return std::nullopt;
    for (xkb_keycode_t key = xkb_keymap_min_keycode(keymap());
         key <= std::min<xkb_keycode_t>(xkb_keymap_max_keycode(keymap()), UINT8_MAX); ++key)
      if (symbolAt(keymap(), key, layout, 0) == symbol)
        return static_cast<xcb_keycode_t>(key);
    return std::nullopt;
  }

  [[nodiscard]] xkb_keymap* keymap() const { return m_keymap.keymap.get(); }

  X11Keymap m_keymap;
};

/// Which of the bits Mod1 to Mod5 a key stands for that has one of the symbols.
std::uint16_t modifierBits(const Keyboard& keyboard, const xcb_get_modifier_mapping_reply_t& mapping,
                           std::span<const xkb_keysym_t> symbols) {
  const std::size_t width = mapping.keycodes_per_modifier;
  const std::span keys(xcb_get_modifier_mapping_keycodes(&mapping), width * (XCB_MAP_INDEX_5 + 1));
  std::uint16_t bits = 0;
  for (std::size_t modifier = XCB_MAP_INDEX_1; modifier <= XCB_MAP_INDEX_5; ++modifier)
    for (const xcb_keycode_t key : keys.subspan(modifier * width, width))
      for (const xkb_keysym_t symbol : symbols)
        if (keyboard.hasSymbol(key, symbol))
          bits = static_cast<std::uint16_t>(bits | 1U << modifier);
  return bits;
}

} // namespace

std::vector<std::uint16_t> X11KeyBinding::modifierCombinations() const {
  std::vector<std::uint16_t> combinations{modifiers};
  for (std::uint16_t bit = 1; bit != 0; bit = static_cast<std::uint16_t>(bit << 1)) {
    if ((locks & bit) == 0)
      continue;
    for (std::size_t count = combinations.size(), index = 0; index < count; ++index)
      combinations.push_back(static_cast<std::uint16_t>(combinations[index] | bit));
  }
  return combinations;
}

X11KeyBinding X11KeyBinding::find(const X11Connection& connection) {
  const auto asked = xcb_get_modifier_mapping(connection.handle);
  const Keyboard keyboard(connection);
  const auto mapping = owned(xcb_get_modifier_mapping_reply(connection.handle, asked, nullptr));
  const auto bitsOf = [&](std::initializer_list<xkb_keysym_t> symbols) -> std::uint16_t {
    return mapping ? modifierBits(keyboard, *mapping, symbols) : std::uint16_t{0};
  };
  const std::uint16_t super = bitsOf({XKB_KEY_Super_L, XKB_KEY_Super_R});
  constexpr std::uint16_t usualSuper = XCB_MOD_MASK_4;
  X11KeyBinding found;
  found.key = keyboard.keyTyping(XKB_KEY_j).value_or(usualPlaceOfJ);
  found.modifiers = static_cast<std::uint16_t>(XCB_MOD_MASK_CONTROL | (super != 0 ? super : usualSuper));
  // A lock that shares its bit with a key we ask for cannot be told from it.
  found.locks = static_cast<std::uint16_t>(
      (XCB_MOD_MASK_LOCK | bitsOf({XKB_KEY_Num_Lock, XKB_KEY_Scroll_Lock})) & ~found.modifiers);
  return found;
}

} // namespace notlet
