#include "cli/TerminalText.h"

#include <algorithm>

#include "core/Text.h"

namespace notlet {

namespace {

constexpr char32_t popFormatting = 0x202C;
constexpr char32_t popIsolate = 0x2069;

/// The directions that are in force at a place of a line.
class Directions {
 public:
  void meet(char32_t character) {
    if (character == popFormatting || character == popIsolate)
      end(character);
    else if (isBidirectionalControl(character))
      m_enders.push_back(character >= 0x2066 ? popIsolate : popFormatting);
  }

  /// What ends all of them.
  std::string takeEnds() {
    std::string ends;
    for (; !m_enders.empty(); m_enders.pop_back())
      ends += m_enders.back() == popIsolate ? "\u2069" : "\u202C";
    return ends;
  }

 private:
  /// The end of an isolate ends what was begun in it, too; within one nothing outside can be ended.
  void end(char32_t ender) {
    const auto isolate = std::find(m_enders.rbegin(), m_enders.rend(), popIsolate);
    if (ender == popIsolate && isolate != m_enders.rend())
      m_enders.erase(isolate.base() - 1, m_enders.end());
    else if (ender == popFormatting && !m_enders.empty() && m_enders.back() == popFormatting)
      m_enders.pop_back();
  }

  std::u32string m_enders;
};

} // namespace

bool isControl(char32_t character) {
  return character < 0x20 || (character >= 0x7f && character < 0xa0) || character == 0x2028 ||
         character == 0x2029;
}

bool isBidirectionalControl(char32_t character) {
  return (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

std::string harmless(std::string_view text) {
  constexpr char32_t lineSeparator = 0x2028;
  std::string result;
  Directions directions;
  for (std::string_view rest = text; !rest.empty();) {
    const CodePoint next = firstCodePoint(rest);
    const bool endsLine = next.value == '\n' || next.value >= lineSeparator;
    if (isControl(next.value) && endsLine)
      result.append(directions.takeEnds());
    if (next.value == 0xFFFD || (isControl(next.value) && !endsLine && next.value != '\t'))
      result.append("\uFFFD");
    else
      result.append(rest.substr(0, next.length));
    directions.meet(next.value);
    rest.remove_prefix(next.length);
  }
  return result.append(directions.takeEnds());
}

} // namespace notlet
