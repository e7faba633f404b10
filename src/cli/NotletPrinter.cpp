#include "cli/NotletPrinter.h"

#include <wchar.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "cli/TimeText.h"
#include "core/Text.h"

namespace notlet::NotletPrinter {
namespace {

using nlohmann::json;

constexpr std::size_t shortIdLength = 8;
constexpr std::string_view ellipsis = "…";

json object(const NotletEntry& notlet) {
  return {{"id", notlet.id.text()},
          {"content", notlet.content},
          {"createdAt", utcText(notlet.createdAt)},
          {"updatedAt", notlet.updatedAt ? json(utcText(*notlet.updatedAt)) : json(nullptr)},
          {"hashtags", notlet.hashtags.strings()},
          {"keywords", notlet.keywords.strings()}};
}

std::string dumped(const json& value, int indentation) {
  return value.dump(indentation, ' ', false, json::error_handler_t::replace);
}

std::string withReplaced(std::string_view text, std::string_view from, std::string_view to) {
  std::string result;
  for (std::size_t position = 0;;) {
    const std::size_t found = text.find(from, position);
    result.append(text.substr(position, found - position));
    if (found == std::string_view::npos)
      return result;
    result.append(to);
    position = found + from.size();
  }
}

bool isControl(char32_t character) {
  return character < 0x20 || (character >= 0x7f && character < 0xa0) || character == 0x2028 ||
         character == 0x2029;
}

std::string_view firstLineOf(std::string_view text) {
  return text.substr(0, text.find_first_of("\r\n"));
}

/// The first line on one line of output, whatever is in it.
std::string flatFirstLine(std::string_view text) {
  std::string flat;
  for (std::string_view rest = firstLineOf(text); !rest.empty();) {
    const CodePoint next = firstCodePoint(rest);
    if (isControl(next.value))
      flat.push_back(' ');
    else
      flat.append(rest.substr(0, next.length));
    rest.remove_prefix(next.length);
  }
  return flat;
}

std::size_t cellsOf(char32_t character) {
  return static_cast<std::size_t>(std::max(0, ::wcwidth(static_cast<wchar_t>(character))));
}

/// As much of the line as fits; an ellipsis tells that there is more.
std::string fitted(std::string_view line, std::size_t width, bool hasMore) {
  std::size_t cells = 0;
  std::size_t roomForEllipsis = 0;
  for (std::size_t position = 0; position < line.size();) {
    const CodePoint next = firstCodePoint(line.substr(position));
    cells += cellsOf(next.value);
    if (cells > width)
      return std::string(line.substr(0, roomForEllipsis)).append(ellipsis);
    position += next.length;
    if (cells < width)
      roomForEllipsis = position;
  }
  if (!hasMore)
    return std::string(line);
  return std::string(line.substr(0, cells < width ? line.size() : roomForEllipsis)).append(ellipsis);
}

} // namespace

std::string jsonLine(const NotletEntry& notlet) {
  return dumped(object(notlet), -1);
}

std::string jsonLine(std::string_view tag, std::size_t count) {
  return dumped({{"tag", tag}, {"count", count}}, -1);
}

std::string jsonElement(const NotletEntry& notlet) {
  // Newlines inside strings are written as escapes, so all that are left are between the lines.
  return "  " + withReplaced(dumped(object(notlet), 2), "\n", "\n  ");
}

std::string markdown(const NotletEntry& notlet) {
  std::string section = "## " + localText(notlet.createdAt);
  if (notlet.updatedAt)
    section += ", edited " + localText(*notlet.updatedAt);
  section += "\n\n";
  for (std::string_view rest = notlet.content; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    // A hashtag is no heading, and a line of a note ends where it ended in the note.
    if (line.starts_with('#'))
      section += '\\';
    section.append(line);
    const bool paragraphGoesOn = !line.empty() && !rest.empty() && rest.front() != '\n';
    section += paragraphGoesOn ? "  \n" : "\n";
  }
  return section += "\n";
}

std::string terminalLine(const NotletEntry& notlet, std::size_t width) {
  constexpr std::size_t narrowest = 20;
  std::string line = notlet.id.text().substr(0, shortIdLength) + "  " + localText(notlet.createdAt) + "  ";
  const std::size_t room = std::max(narrowest, width - std::min(width, line.size()));
  const bool hasMore = firstLineOf(notlet.content).size() < notlet.content.size();
  return line += fitted(flatFirstLine(notlet.content), room, hasMore);
}

std::string pipeLine(const NotletEntry& notlet) {
  return notlet.id.text().substr(0, shortIdLength) + "\t" + localText(notlet.createdAt) + "\t" +
         flatFirstLine(notlet.content);
}

std::string harmless(std::string_view text) {
  std::string result;
  for (std::string_view rest = text; !rest.empty();) {
    const CodePoint next = firstCodePoint(rest);
    const bool isLayout = next.value == '\n' || next.value == '\t' || next.value > 0x2000;
    if (isControl(next.value) && !isLayout)
      result.append("\uFFFD");
    else
      result.append(rest.substr(0, next.length));
    rest.remove_prefix(next.length);
  }
  return result;
}

} // namespace notlet::NotletPrinter
