#include "platform/linux/X11KeyBinding.h"

#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <optional>

#include "platform/linux/X11Keyboard.h"

namespace notlet {

namespace {

constexpr xcb_keycode_t usualPlaceOfJ = 44;

template<auto release>
struct Release {
  template<typename Object>
  void operator()(Object* object) const {
    release(object);
  }
};
using Context = std::unique_ptr<xkb_context, Release<xkb_context_unref>>;
using Keymap = std::unique_ptr<xkb_keymap, Release<xkb_keymap_unref>>;
using State = std::unique_ptr<xkb_state, Release<xkb_state_unref>>;

bool hasXkb(const X11Connection& connection) {
  const auto* extension = xcb_get_extension_data(connection.handle, &xcb_xkb_id);
  return extension != nullptr && extension->present != 0;
}

/// The keymap of the server's keyboard and which of its layouts is in use.
class Keyboard {
 public:
  explicit Keyboard(const X11Connection& connection) {
    // Asking for an extension that is not there would end the connection.
    if (!hasXkb(connection))
      return;
    const Context context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const std::int32_t device = xkb_x11_get_core_keyboard_device_id(connection.handle);
    if (!context || device < 0)
      return;
    m_keymap.reset(xkb_x11_keymap_new_from_device(context.get(), connection.handle, device,
                                                  XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!m_keymap)
      return;
    const State state(xkb_x11_state_new_from_device(m_keymap.get(), connection.handle, device));
    if (state)
      m_layoutInUse = xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE);
  }

  [[nodiscard]] std::optional<xcb_keycode_t> keyTyping(xkb_keysym_t symbol) const {
    if (auto key = keyTyping(symbol, m_layoutInUse))
      return key;
    for (xkb_layout_index_t layout = 0; m_keymap && layout < xkb_keymap_num_layouts(m_keymap.get()); ++layout)
      if (auto key = keyTyping(symbol, layout))
        return key;
    return std::nullopt;
  }

  [[nodiscard]] bool hasSymbol(xcb_keycode_t key, xkb_keysym_t symbol) const {
    if (!m_keymap || key == 0)
      return false;
    for (xkb_layout_index_t layout = 0; layout < xkb_keymap_num_layouts_for_key(m_keymap.get(), key);
         ++layout)
      for (xkb_level_index_t level = 0; level < xkb_keymap_num_levels_for_key(m_keymap.get(), key, layout);
           ++level)
        if (symbolAt(key, layout, level) == symbol)
          return true;
    return false;
  }

 private:
  [[nodiscard]] std::optional<xcb_keycode_t> keyTyping(xkb_keysym_t symbol, xkb_layout_index_t layout) const {
    if (!m_keymap)
      return std::nullopt;
    for (xkb_keycode_t key = xkb_keymap_min_keycode(m_keymap.get());
         key <= std::min<xkb_keycode_t>(xkb_keymap_max_keycode(m_keymap.get()), UINT8_MAX); ++key)
      if (symbolAt(key, layout, 0) == symbol)
        return static_cast<xcb_keycode_t>(key);
    return std::nullopt;
  }

  [[nodiscard]] xkb_keysym_t symbolAt(xkb_keycode_t key, xkb_layout_index_t layout,
                                      xkb_level_index_t level) const {
    const xkb_keysym_t* symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(m_keymap.get(), key, layout, level, &symbols);
    return count == 1 ? *symbols : XKB_KEY_NoSymbol;
  }

  Keymap m_keymap;
  xkb_layout_index_t m_layoutInUse = 0;
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
