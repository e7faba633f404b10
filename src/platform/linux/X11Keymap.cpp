#include "platform/linux/X11Keymap.h"

#include <xkbcommon/xkbcommon-x11.h>

#include "platform/linux/X11Keyboard.h"

namespace notlet {

namespace {

struct ContextRelease {
  void operator()(xkb_context* context) const { xkb_context_unref(context); }
};
struct StateRelease {
  void operator()(xkb_state* state) const { xkb_state_unref(state); }
};

/// All events of the extension begin like this one.
using XkbEvent = xcb_xkb_state_notify_event_t;

/// Asking for an extension that is not there would end the connection.
const xcb_query_extension_reply_t* xkbOf(const X11Connection& connection) {
  const auto* extension = xcb_get_extension_data(connection.handle, &xcb_xkb_id);
  return extension != nullptr && extension->present != 0 ? extension : nullptr;
}

const XkbEvent* xkbEvent(const X11Connection& connection, const xcb_generic_event_t& event) {
  const auto* extension = xkbOf(connection);
  const bool isXkb = extension != nullptr && eventType(event) == extension->first_event;
  return isXkb ? &reinterpret_cast<const XkbEvent&>(event) : nullptr;
}

} // namespace

X11Keymap X11Keymap::ask(const X11Connection& connection) {
  X11Keymap found;
  if (xkbOf(connection) == nullptr)
    return found;
  const std::unique_ptr<xkb_context, ContextRelease> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
  const std::int32_t device = xkb_x11_get_core_keyboard_device_id(connection.handle);
  if (!context || device < 0)
    return found;
  found.keymap.reset(
      xkb_x11_keymap_new_from_device(context.get(), connection.handle, device, XKB_KEYMAP_COMPILE_NO_FLAGS));
  if (!found.keymap)
    return found;
  const std::unique_ptr<xkb_state, StateRelease> state(
      xkb_x11_state_new_from_device(found.keymap.get(), connection.handle, device));
  if (state)
    found.layoutInUse = xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE);
  return found;
}

bool X11Keymap::isChange(const X11Connection& connection, const xcb_generic_event_t& event) {
  if (eventType(event) == XCB_MAPPING_NOTIFY)
    return reinterpret_cast<const xcb_mapping_notify_event_t&>(event).request != XCB_MAPPING_POINTER;
  const XkbEvent* change = xkbEvent(connection, event);
  return change != nullptr &&
         (change->xkbType == XCB_XKB_NEW_KEYBOARD_NOTIFY || change->xkbType == XCB_XKB_MAP_NOTIFY);
}

bool X11Keymap::isOtherLayout(const X11Connection& connection, const xcb_generic_event_t& event) {
  const XkbEvent* change = xkbEvent(connection, event);
  return change != nullptr && change->xkbType == XCB_XKB_STATE_NOTIFY &&
         (change->changed & XCB_XKB_STATE_PART_GROUP_STATE) != 0;
}

xkb_keysym_t symbolAt(xkb_keymap* keymap, xkb_keycode_t key, xkb_layout_index_t layout,
                      xkb_level_index_t level) {
  const xkb_keysym_t* symbols = nullptr;
  const int count = xkb_keymap_key_get_syms_by_level(keymap, key, layout, level, &symbols);
  return count == 1 ? *symbols : XKB_KEY_NoSymbol;
}

} // namespace notlet
