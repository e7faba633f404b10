#pragma once

#include <array>
#include <random>
#include <string>
#include <string_view>

#include "core/NotletEntry.h"

namespace notlet {

/// Texts of many scripts put together by chance from pieces that have tripped text rules before: accents in
/// both encodings, letters whose lowercase is longer or depends on its place, words without spaces, joined
/// emoji, lone marks, every kind of space.
class RandomText {
 public:
  explicit RandomText(unsigned seed) : m_engine(seed) {}

  std::size_t below(std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(m_engine);
  }
  bool oneIn(std::size_t chances) { return below(chances) == 0; }

  std::string_view word() { return words[below(words.size())]; }
  std::string_view separator() { return separators[below(separators.size())]; }

  std::string text(std::size_t mostPieces) {
    std::string result;
    for (std::size_t left = below(mostPieces + 1); left > 0; --left) {
      if (oneIn(5))
        result += '#';
      result += word();
      result += separator();
    }
    return result;
  }

  /// A notlet of such a text; some carry tags and keywords that do not come from it, as a store may hold.
  NotletEntry notlet() {
    auto entry = makeNotlet(text(12) + "x", Timestamp(std::chrono::seconds(below(40)))).value();
    if (oneIn(4))
      entry.hashtags = WordList::fromPacked(std::string(entry.hashtags.packed()).append(word()));
    if (oneIn(4))
      entry.keywords = {word()};
    return entry;
  }

 private:
  // clang-format off
  static constexpr auto words = std::to_array<std::string_view>({
      "a", "e", "i", "the", "and", "Work", "work", "wo", "WORK-1", "to_do", "don't", "dont", "I'm", "e.g.", "x_y", "README.md", "readmemd", "v2", "2024", "3.14",
      "café", "cafe\u0301", "CAFÉ", "cafe", "e\u0301\u0323", "e\u0323\u0301", "\u212B", "å", "naïve", "İstanbul",
      "I\u0307", "istanbul", "ISTANBUL", "ıslak", "Straße", "STRASSE", "strasse", "\u1E9E", "ΟΔΟΣ", "οδος", "οδός", "Σ",
      "ς", "Привет", "привет", "й", "и\u0306", "и", "كِتَاب", "كتاب", "שָׁלוֹם", "שלום", "हिन्दी", "हिन", "क", "का", "कि",
      "\u0958\u0932\u092E", "\uFB2A\u05DC", "ภาษาไทย", "ภาษา", "น้ำ", "日本語", "日本", "が", "か\u3099", "か", "カメラ", "한국어", "한", "하",
      "\u1112\u1161\u11AB", "\u1112\u1161", "\u11AB", "👨\u200D👩\u200D👧", "👨", "❤", "❤\uFE0F", "1\uFE0F\u20E3",
      "👍🏽", "½", "Ⅷ", "٣", "𝒳", "!!!", "#", "##", "-", "_", "'", "\u0301", "\u093E", "\uFFFD", "\u200D"});
  static constexpr auto separators = std::to_array<std::string_view>({
      " ", " ", " ", " ", "", "", "\n", "\r\n", "\t", "\u00A0", "\u3000", "\u2028", "\u0085", "\u200B", ".", ", "});
  // clang-format on

  std::mt19937 m_engine;
};

} // namespace notlet
