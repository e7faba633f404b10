#pragma once

#include <cstdint>
#include <string_view>

#include "core/Rgb.h"

/// Colours of hashtags, the same on every run and every machine, and text that stays legible on a colour.
namespace notlet::HashtagColor {

/// The 64-bit FNV-1a hash of the lowercase tag's UTF-8 bytes.
[[nodiscard]] std::uint64_t stableHash(std::string_view tag);

/// One of the theme's two accents; a tag keeps its colour in any letter case.
[[nodiscard]] Rgb color(std::string_view tag, Rgb accent, Rgb alternateAccent);

/// The relative luminance of WCAG 2.0 from 0 (black) to 1 (white). Components are from 0 to 1.
[[nodiscard]] double relativeLuminance(double red, double green, double blue);
[[nodiscard]] double relativeLuminance(Rgb color);

/// Black or white, whichever can be read on the background.
[[nodiscard]] Rgb contrastingText(Rgb background);

} // namespace notlet::HashtagColor
