#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace notlet {

/// The name under which the shortcuts know a key: "return", "backspace", "escape", "left", "right", "down",
/// "up", else the characters that it types, in lowercase. Empty for a key that types nothing.
///
/// `keyCode` is one of KeyCode; `characters` are UTF-8, those typed with no modifier but shift.
[[nodiscard]] std::string macKeyName(std::uint16_t keyCode, std::optional<std::string_view> characters);

/// Whether shift may be part of typing the key of this name: a sign, not a letter that shift makes a capital.
[[nodiscard]] bool isTypedWithShift(std::string_view keyName);

/// A key with the modifiers that must be held, such as "control+s".
struct MacKeyCombination {
  /// A key name.
  std::string key;
  /// Bits of KeyModifier.
  std::uint32_t modifiers = 0;

  /// Reads modifier words and a key, joined by "+"; letter case and white space do not count. Nothing when no
  /// key is named or a modifier word is unknown.
  [[nodiscard]] static std::optional<MacKeyCombination> parse(std::string_view notation);

  /// Whether this key is pressed with exactly these modifiers. Bits outside KeyModifier::mask do not count.
  [[nodiscard]] bool matches(std::string_view keyName, std::uint32_t modifierRawValue) const;

  bool operator==(const MacKeyCombination&) const = default;
};

} // namespace notlet
