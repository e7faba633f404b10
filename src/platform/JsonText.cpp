#include "platform/JsonText.h"

#include <algorithm>
#include <string>

#include "core/Text.h"

namespace notlet {

namespace {

using Json = nlohmann::json;

/// The program's own files are a few levels deep; what lies deeper can only be meant to exhaust the stack.
constexpr std::size_t deepestNesting = 64;

/// Looks only at brackets outside of strings, so that it is right for every text that is JSON.
bool isNestedTooDeeply(std::string_view json) {
  std::size_t depth = 0;
  bool inString = false;
  for (std::size_t at = 0; at < json.size(); ++at) {
    const char character = json[at];
    if (inString && character == '\\')
      ++at;
    else if (character == '"')
      inString = !inString;
    else if (!inString && (character == '{' || character == '['))
      ++depth;
    else if (!inString && (character == '}' || character == ']'))
      depth -= depth > 0 ? 1 : 0;
    if (depth > deepestNesting)
      return true;
  }
  return false;
}

constexpr std::string_view wordCharacters =
    "+-._0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

std::size_t endOfText(std::string_view json, std::size_t quote) {
  for (std::size_t at = quote + 1; at < json.size(); ++at) {
    if (json[at] == '"')
      return at + 1;
    at += json[at] == '\\' ? 1 : 0;
  }
  return json.size();
}

std::size_t endOfToken(std::string_view json, std::size_t begin) {
  if (json[begin] == '"')
    return endOfText(json, begin);
  if (wordCharacters.contains(json[begin]))
    return std::min(json.find_first_not_of(wordCharacters, begin), json.size());
  return begin + firstCodePoint(json.substr(begin)).length;
}

/// What the parser could not take, and what stands before it.
struct Token {
  std::string_view text;
  std::size_t begin = 0;
  /// The last character that is no white space; NUL at the start of the file.
  char before = '\0';
  /// How many brackets are open.
  int depth = 0;
};

/// The token at the position, or the last one before it; its text is empty when there is none.
Token tokenAt(std::string_view json, std::size_t position) {
  constexpr std::string_view whiteSpace = " \t\r\n";
  if (const std::size_t last = json.find_last_not_of(whiteSpace, position); last != json.npos)
    position = last;
  Token token;
  for (std::size_t at = json.find_first_not_of(whiteSpace);;
       at = json.find_first_not_of(whiteSpace, token.begin + token.text.size())) {
    if (!token.text.empty())
      token.before = token.text.back();
    token.depth += token.text == "{" || token.text == "[" ? 1 : 0;
    token.depth -= token.text == "}" || token.text == "]" ? 1 : 0;
    token.begin = std::min(at, json.size());
    token.text = at < json.size() ? json.substr(at, endOfToken(json, at) - at) : std::string_view();
    if (position < token.begin + token.text.size() || at >= json.size())
      return token;
  }
}

/// What may have been meant, as the end of a sentence; empty when nobody can tell.
std::string_view hintAt(const Token& token) {
  if (token.text.empty())
    return {};
  if (token.text.starts_with('/') || token.text.starts_with('#'))
    return ": there is no room for comments";
  if (token.text.starts_with('\''))
    return ": texts stand between double quotation marks";
  if (token.before == ',' && (token.text == "}" || token.text == "]"))
    return ": the comma before it is one too many";
  if (token.before != '\0' && token.depth == 0)
    return ": the file should end before it";
  const bool beginsValue = token.text == "{" || token.text == "[" || token.text.starts_with('"') ||
                           wordCharacters.contains(token.text.front());
  if (beginsValue && std::string_view(",:[{").find(token.before) == std::string_view::npos)
    return ": a comma or a colon may be missing before it";
  return {};
}

/// As much of it as fits into a message. It may be one long word.
std::string shortened(std::string_view text) {
  constexpr std::size_t longest = 60;
  std::string_view rest = text;
  while (!rest.empty() && text.size() - rest.size() < longest)
    rest.remove_prefix(firstCodePoint(rest).length);
  return std::string(text.substr(0, text.size() - rest.size())) + (rest.empty() ? "" : "…");
}

/// What is wrong, for somebody who edits the file. The position is that of the last byte that was read.
std::string complaint(std::string_view json, std::size_t position) {
  if (position >= json.size())
    return "The file ends too early, in " + placeInText(json, json.size()) + ".";
  const Token token = tokenAt(json, position);
  const bool isInText = token.text.starts_with('"') && !Json::accept(token.text);
  if (isInText && (json[position] == '\n' || json[position] == '\r'))
    return "The text that begins in " + placeInText(json, token.begin) + " has no quotation mark at its end.";
  if (isInText && static_cast<unsigned char>(json[position]) < ' ')
    return "In " + placeInText(json, position) + " stands a character that must be written with a backslash.";
  if (isInText)
    return "The backslash before " + placeInText(json, position) +
           " stands before something that it gives no meaning.";
  return "In " + placeInText(json, token.begin) + ", “" + shortened(token.text) + "” is not expected" +
         std::string(hintAt(token)) + ".";
}

/// The first byte that is not UTF-8, or is NUL, which the parser would take for the end of the file.
std::size_t findUnreadable(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    const CodePoint character = firstCodePoint(text.substr(at));
    if (character.value == 0 || !isValidUtf8(text.substr(at, character.length)))
      break;
    at += character.length;
  }
  return at;
}

} // namespace

Result<Json> parseJsonText(std::string_view json, std::size_t largest) {
  if (json.size() > largest)
    return failure("The file is too large.");
  if (!isValidUtf8(json) || json.contains('\0'))
    return failure("The file is not valid UTF-8 text, in " + placeInText(json, findUnreadable(json)) + ".");
  if (isNestedTooDeeply(json))
    return failure("The file is nested too deeply.");
  try {
    return Json::parse(json);
  } catch (const Json::parse_error& error) {
    return failure(complaint(json, std::max<std::size_t>(error.byte, 1) - 1));
  } catch (const Json::exception&) {
    return failure("A number in the file is too large.");
  }
}

std::string placeInText(std::string_view text, std::size_t position) {
  const std::string_view before = text.substr(0, std::min(position, text.size()));
  const auto line = 1 + std::ranges::count(before, '\n');
  const std::size_t lineStart = before.rfind('\n') + 1; // npos + 1 is 0
  const auto column = 1 + std::ranges::count_if(before.substr(lineStart), [](char byte) {
                        return (static_cast<unsigned char>(byte) & 0xc0) != 0x80;
                      });
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

} // namespace notlet
