#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace notlet {

/// Another program on the same X server, which is also the user's hands on keyboard and mouse.
class X11Client {
 public:
  explicit X11Client(const std::string& display);
  X11Client(const X11Client&) = delete;
  X11Client& operator=(const X11Client&) = delete;
  ~X11Client();

  // Keyboard and mouse. Each returns after the server has taken it in.
  void pressKey(xcb_keycode_t key) const;
  void releaseKey(xcb_keycode_t key) const;
  /// Presses the keys in their order and releases them in the opposite one.
  void typeKeys(const std::vector<xcb_keycode_t>& keys) const;
  void click(std::int16_t x, std::int16_t y, std::uint8_t button = 1) const;

  /// False when somebody else has the key. Returned grabs end with the object.
  [[nodiscard]] bool grabKey(xcb_keycode_t key, std::uint16_t modifiers) const;
  void ungrabKey(xcb_keycode_t key, std::uint16_t modifiers) const;
  /// Has the key stand for the modifier with this number (Shift is 0, Mod1 is 3), beside its other keys.
  void addModifierKey(int modifier, xcb_keycode_t key) const;
  void removeModifierKey(int modifier, xcb_keycode_t key) const;

  void ownSelection(std::string_view name) const;
  void giveUpSelection(std::string_view name) const;
  /// A window with a title that the window manager looks after, shown at the place.
  [[nodiscard]] xcb_window_t showWindow(std::int16_t x, std::int16_t y, std::uint16_t width,
                                        std::uint16_t height) const;

  /// Gives the window the keyboard, as a program does where nobody manages windows.
  void takeKeyboard(xcb_window_t window) const;
  [[nodiscard]] xcb_window_t keyboardOwner() const;
  /// Tells the window manager, as toolkits do with each key, that the user is at work in the window.
  void noteUse(xcb_window_t window) const;
  [[nodiscard]] bool isShown(xcb_window_t window) const;
  /// Whether new windows are looked after.
  [[nodiscard]] bool hasWindowManager() const;
  /// The window that the window manager calls active.
  [[nodiscard]] xcb_window_t activeWindow() const;
  [[nodiscard]] std::vector<std::uint32_t> property(xcb_window_t window, std::string_view name) const;
  /// Empty without such a property.
  [[nodiscard]] std::string text(xcb_window_t window, std::string_view name) const;
  [[nodiscard]] xcb_atom_t atom(std::string_view name) const;
  /// Whether a button was pressed in one of this program's windows since the last call.
  [[nodiscard]] bool tookButtonPress() const;

 private:
  void input(std::uint8_t type, std::uint8_t detail, std::int16_t x = 0, std::int16_t y = 0) const;
  void sync() const;
  void changeModifierKeys(int modifier, xcb_keycode_t from, xcb_keycode_t to) const;
  [[nodiscard]] xcb_window_t makeWindow() const;

  xcb_connection_t* m_connection = nullptr;
  xcb_window_t m_root = XCB_NONE;
};

} // namespace notlet
