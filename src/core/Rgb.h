#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace notlet {

/// An opaque sRGB colour.
struct Rgb {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;

  /// Reads a colour code ("1E1E2E", "#F80"); anything malformed gives black, never an error.
  [[nodiscard]] static Rgb fromHex(std::string_view code);
  /// Components from 0 to 1, each rounded to the nearest of the 256 steps, halves upwards.
  [[nodiscard]] static Rgb fromComponents(double redComponent, double greenComponent, double blueComponent);
  /// The colour code: six upper-case digits RRGGBB without "#".
  [[nodiscard]] std::string hexRGB() const;

  bool operator==(const Rgb&) const = default;
};

} // namespace notlet
