#include "cli/NotletPrinter.h"

#include <wchar.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "cli/TerminalText.h"
#include "cli/TimeText.h"
#include "core/Text.h"

namespace notlet::NotletPrinter {
namespace {

using nlohmann::json;

constexpr std::size_t shortIdLength = 8;
constexpr std::string_view ellipsis = "…";

/// Whether a control or a bidirectional control may begin with a byte; few characters have one of these.
constexpr auto beginsControls = [] {
  std::array<bool, 256> begins{};
  std::fill_n(begins.begin(), ' ', true);
  for (const std::size_t byte : {0x7fU, 0xc2U, 0xe2U})
    begins[byte] = true;
  return begins;
}();

bool mayBeginControl(char byte) {
  return beginsControls[static_cast<unsigned char>(byte)];
}

json object(const NotletEntry& notlet) {
  return {{"id", notlet.id.text()},
          {"content", notlet.content},
          {"createdAt", utcText(notlet.createdAt)},
          {"updatedAt", notlet.updatedAt ? json(utcText(*notlet.updatedAt)) : json(nullptr)},
          {"hashtags", notlet.hashtags.strings()},
          {"keywords", notlet.keywords.strings()}};
}

/// JSON in which what a terminal would obey is written as escapes; it reads the same.
std::string dumped(const json& value, int indentation) {
  const std::string text = value.dump(indentation, ' ', false, json::error_handler_t::replace);
  std::string escaped;
  std::size_t done = 0;
  for (std::size_t position = 0; position < text.size();) {
    if (!mayBeginControl(text[position])) {
      ++position;
      continue;
    }
    const CodePoint next = firstCodePoint(std::string_view(text).substr(position));
    if (next.value != '\n' && (isControl(next.value) || isBidirectionalControl(next.value))) {
      std::array<char, 8> code{};
      std::snprintf(code.data(), code.size(), "\\u%04x", static_cast<unsigned>(next.value));
      escaped.append(text, done, position - done).append(code.data());
      done = position + next.length;
    }
    position += next.length;
  }
  return escaped.append(text, done);
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

/// The first line on one line of output, whatever is in it.
void appendFlatFirstLine(std::string& flat, std::string_view text) {
  std::size_t done = 0;
  std::size_t position = 0;
  while (position < text.size() && text[position] != '\n' && text[position] != '\r') {
    if (!mayBeginControl(text[position])) {
      ++position;
      continue;
    }
    const CodePoint next = firstCodePoint(text.substr(position));
    if (isControl(next.value)) {
      flat.append(text.substr(done, position - done)).push_back(' ');
      done = position + next.length;
    }
    position += next.length;
  }
  flat.append(text.substr(done, position - done));
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

std::string beginOfLine(const NotletEntry& notlet, std::string_view separator) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string line;
  for (std::size_t index = 0; index < shortIdLength / 2; ++index) {
    line.push_back(digits[notlet.id.bytes[index] >> 4U]);
    line.push_back(digits[notlet.id.bytes[index] & 0xfU]);
  }
  return line.append(separator).append(localText(notlet.createdAt)).append(separator);
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
  std::string line = beginOfLine(notlet, "  ");
  const std::size_t room = std::max(narrowest, width - std::min(width, line.size()));
  const bool hasMore = notlet.content.view().find_first_of("\r\n") != std::string_view::npos;
  std::string text;
  appendFlatFirstLine(text, notlet.content);
  return line += fitted(text, room, hasMore);
}

std::string pipeLine(const NotletEntry& notlet) {
  std::string line = beginOfLine(notlet, "\t");
  line.reserve(line.size() + notlet.content.size());
  appendFlatFirstLine(line, notlet.content);
  return line;
}

} // namespace notlet::NotletPrinter
