#include "platform/JsonText.h"

#include "core/Text.h"

namespace notlet {

namespace {

using Json = nlohmann::json;

/// The program's own files are a few levels deep; what lies deeper can only be meant to exhaust the stack.
constexpr std::size_t deepestNesting = 64;
constexpr std::size_t longestComplaint = 300;

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

/// The parser's words without their number. It quotes the file, which may be one long word, and may break off
/// in the midst of a character.
std::string complaint(const Json::exception& exception) {
  std::string_view text = exception.what();
  if (const std::size_t end = text.find("] "); text.starts_with('[') && end != std::string_view::npos)
    text.remove_prefix(end + 2);
  std::string words;
  while (!text.empty() && words.size() < longestComplaint) {
    const CodePoint character = firstCodePoint(text);
    words.append(character.value == U'\uFFFD' ? "\uFFFD" : text.substr(0, character.length));
    text.remove_prefix(character.length);
  }
  return words + (text.empty() ? "." : "….");
}

} // namespace

Result<Json> parseJsonText(std::string_view json, std::size_t largest) {
  if (json.size() > largest)
    return failure("The file is too large.");
  // The parser would take a null byte for the end of the file.
  if (!isValidUtf8(json) || json.contains('\0'))
    return failure("The file is not valid UTF-8 text.");
  if (isNestedTooDeeply(json))
    return failure("The file is nested too deeply.");
  try {
    return Json::parse(json);
  } catch (const Json::exception& exception) {
    return failure(complaint(exception));
  }
}

} // namespace notlet
