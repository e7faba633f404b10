#include "core/HashtagColor.h"

#include <cmath>

#include "core/Text.h"

namespace notlet::HashtagColor {

namespace {

constexpr std::uint64_t offsetBasis = 0xcbf29ce484222325;
constexpr std::uint64_t prime = 0x100000001b3;
constexpr double lightBackground = 0.45;

double linear(double component) {
  return component <= 0.03928 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

} // namespace

std::uint64_t stableHash(std::string_view tag) {
  std::uint64_t hash = offsetBasis;
  for (const char byte : lowercased(tag))
    hash = (hash ^ static_cast<unsigned char>(byte)) * prime;
  return hash;
}

Rgb color(std::string_view tag, Rgb accent, Rgb alternateAccent) {
  return stableHash(tag) % 2 == 0 ? accent : alternateAccent;
}

double relativeLuminance(double red, double green, double blue) {
  return 0.2126 * linear(red) + 0.7152 * linear(green) + 0.0722 * linear(blue);
}

double relativeLuminance(Rgb color) {
  return relativeLuminance(color.red / 255.0, color.green / 255.0, color.blue / 255.0);
}

Rgb contrastingText(Rgb background) {
  return relativeLuminance(background) > lightBackground ? Rgb{0, 0, 0} : Rgb{255, 255, 255};
}

} // namespace notlet::HashtagColor
