#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace notlet {

/// A 128-bit identifier, in the byte order of its text form.
struct Uuid {
  std::array<std::uint8_t, 16> bytes{};

  /// A fresh random identifier (version 4).
  [[nodiscard]] static Uuid random();
  /// Reads the standard text form with hyphens, in either letter case; nothing for any other text.
  [[nodiscard]] static std::optional<Uuid> parse(std::string_view text);
  /// The standard upper-case text form with hyphens, 36 characters.
  [[nodiscard]] std::string text() const;

  auto operator<=>(const Uuid&) const = default;
};

} // namespace notlet

template<>
struct std::hash<notlet::Uuid> {
  std::size_t operator()(const notlet::Uuid& id) const noexcept {
    // The bytes are random already; any eight of them spread well.
    std::uint64_t value = 0;
    std::memcpy(&value, id.bytes.data() + 8, sizeof value);
    return static_cast<std::size_t>(value);
  }
};
