#pragma once

#include <cstddef>
#include <string_view>

namespace notlet {

/// The first position at or after `from` where the bytes of `needle` stand in `text`, or npos. Scans at
/// memory speed, which std::string_view::find and the C library do not.
[[nodiscard]] std::size_t findBytes(std::string_view text, std::string_view needle, std::size_t from = 0);

/// The same for a place where each byte is that of `first` or that of `second`, which are equally long; small
/// and capital letters, for example. Meant for needles of a few dozen bytes.
[[nodiscard]] std::size_t findEither(std::string_view text, std::string_view first, std::string_view second,
                                     std::size_t from = 0);

/// Two letters or digits of ASCII, each in its small and its capital form.
struct LetterPair {
  char firstSmall = 0;
  char firstCapital = 0;
  char secondSmall = 0;
  char secondCapital = 0;
};

/// Whether the first of the letters stands somewhere with the second behind it, or with something behind it
/// that is no letter, digit, space or control of ASCII.
[[nodiscard]] bool holdsPairOrJoint(std::string_view text, const LetterPair& pair);

} // namespace notlet
