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
    // Not all are random: those made of the time by other programs have whole halves in common.
    std::uint64_t halves[2];
    std::memcpy(halves, id.bytes.data(), sizeof halves);
    std::uint64_t value = halves[0] ^ (halves[1] * 0x9e3779b97f4a7c15U);
    for (const std::uint64_t factor : {0xbf58476d1ce4e5b9U, 0x94d049bb133111ebU})
      value = (value ^ (value >> 31)) * factor;
    return static_cast<std::size_t>(value ^ (value >> 31));
  }
};
