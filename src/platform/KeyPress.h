#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace notlet {

/// Keys that are known by their place on the keyboard. The numbers are those in which the shortcut rules name
/// keys, whatever the desktop calls them.
namespace KeyCode {
inline constexpr std::uint16_t returnKey = 36;
inline constexpr std::uint16_t keypadEnter = 76;
inline constexpr std::uint16_t backspace = 51;
inline constexpr std::uint16_t escape = 53;
inline constexpr std::uint16_t left = 123;
inline constexpr std::uint16_t right = 124;
inline constexpr std::uint16_t down = 125;
inline constexpr std::uint16_t up = 126;
/// Any other key; its characters tell it from the rest.
inline constexpr std::uint16_t other = 0xFFFF;
} // namespace KeyCode

/// Bits of the modifier keys that are held.
namespace KeyModifier {
inline constexpr std::uint32_t shift = 0x20000;
inline constexpr std::uint32_t control = 0x40000;
/// The Alt key.
inline constexpr std::uint32_t option = 0x80000;
/// The Super key.
inline constexpr std::uint32_t command = 0x100000;
/// Other bits never count.
inline constexpr std::uint32_t mask = shift | control | option | command;
} // namespace KeyModifier

/// A key that was pressed, or that repeats while it is held.
struct KeyPress {
  std::uint16_t keyCode = KeyCode::other;
  /// What the key types with no modifier but shift (UTF-8); absent for keys that type nothing.
  std::optional<std::string> characters;
  /// What the same key types on a Latin layout; equal to `characters` when that is the layout in use.
  std::optional<std::string> latinCharacters;
  /// Bits of KeyModifier.
  std::uint32_t modifiers = 0;
  /// It comes again because the key is held.
  bool isRepeat = false;

  bool operator==(const KeyPress&) const = default;
};

} // namespace notlet
