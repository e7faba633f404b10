#include "core/Rgb.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "core/Text.h"

namespace notlet {

namespace {

bool isLetterOrDigit(char32_t character) {
  // Marks count as letters here: only punctuation, symbols and space around a code are decoration.
  constexpr std::uint32_t kept = U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK;
  return (U_GET_GC_MASK(static_cast<UChar32>(character)) & kept) != 0;
}

std::string_view withoutDecoration(std::string_view code) {
  while (!code.empty() && !isLetterOrDigit(firstCodePoint(code).value))
    code.remove_prefix(firstCodePoint(code).length);
  while (!code.empty() && !isLetterOrDigit(lastCodePoint(code).value))
    code.remove_suffix(lastCodePoint(code).length);
  return code;
}

/// The number that the whole text writes; 0 when it is not one or takes more than 64 bits.
std::uint64_t hexadecimalNumber(std::string_view digits) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  return error == std::errc{} && end == digits.data() + digits.size() ? value : 0;
}

std::uint8_t channel(std::uint64_t value, unsigned shift) {
  return static_cast<std::uint8_t>(value >> shift);
}

std::uint8_t doubledDigit(std::uint64_t value, unsigned shift) {
  return static_cast<std::uint8_t>(((value >> shift) & 0xF) * 0x11);
}

std::uint8_t channelOf(double component) {
  return static_cast<std::uint8_t>(std::lround(std::clamp(component, 0.0, 1.0) * 255));
}

} // namespace

Rgb Rgb::fromHex(std::string_view code) {
  const std::string_view digits = withoutDecoration(code);
  const std::uint64_t value = hexadecimalNumber(digits);
  if (digits.size() == 3)
    return {doubledDigit(value, 8), doubledDigit(value, 4), doubledDigit(value, 0)};
  return {channel(value, 16), channel(value, 8), channel(value, 0)};
}

Rgb Rgb::fromComponents(double redComponent, double greenComponent, double blueComponent) {
  return {channelOf(redComponent), channelOf(greenComponent), channelOf(blueComponent)};
}

std::string Rgb::hexRGB() const {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string code;
  for (const std::uint8_t value : std::array{red, green, blue}) {
    code.push_back(digits[value >> 4]);
    code.push_back(digits[value & 0xF]);
  }
  return code;
}

} // namespace notlet
