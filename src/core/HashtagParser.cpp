#include "core/HashtagParser.h"

#include <unicode/regex.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <unordered_set>

#include "core/Text.h"
#include "core/Unfolding.h"

namespace notlet::HashtagParser {

namespace {

/// Tokens longer than this are no tags anybody types; it only keeps lengths within what a pattern can take.
constexpr std::size_t longestToken = std::size_t{1} << 30;

std::unique_ptr<icu::RegexMatcher> compiled(const char16_t* pattern) {
  UErrorCode status = U_ZERO_ERROR;
  auto matcher = std::make_unique<icu::RegexMatcher>(icu::UnicodeString(pattern), 0, status);
  if (U_FAILURE(status))
    return nullptr;
  return matcher;
}

icu::RegexMatcher* tagPattern() {
  thread_local const auto matcher = compiled(uR"((?<!\S)#[\p{L}\p{N}_-]+)");
  return matcher.get();
}

icu::RegexMatcher* completionPattern() {
  thread_local const auto matcher = compiled(uR"((?<!\S)#([\p{L}\p{N}_-]*)$)");
  return matcher.get();
}

/// The text from `begin` to the next white space.
std::string_view tokenAt(std::string_view text, std::size_t begin) {
  return text.substr(begin, std::min(findWhiteSpace(text, begin) - begin, longestToken));
}

bool beginsToken(std::string_view text, std::size_t position) {
  return position == 0 || isWhiteSpace(lastCodePoint(text.substr(0, position)).value);
}

icu::UnicodeString wide(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<int32_t>(text.size())});
}

/// The tag with which a token begins that itself begins with "#"; empty when no tag character follows.
std::string leadingTag(std::string_view token) {
  icu::RegexMatcher* pattern = tagPattern();
  std::string tag;
  if (pattern == nullptr)
    return tag;
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString input = wide(token);
  if (pattern->reset(input).lookingAt(status) != 0)
    input.tempSubStringBetween(1, pattern->end(status)).toUTF8String(tag);
  return tag;
}

/// What the patterns above take into a tag.
bool isTagCharacter(char32_t character) {
  return character == '_' || character == '-' ||
         (U_GET_GC_MASK(static_cast<UChar32>(character)) & (U_GC_L_MASK | U_GC_N_MASK)) != 0;
}

/// The first character of a tag with all that follows it and cannot stand in a tag.
std::string_view firstPiece(std::string_view tag) {
  std::size_t end = firstCodePoint(tag).length;
  while (end < tag.size()) {
    const CodePoint next = firstCodePoint(tag.substr(end));
    if (isTagCharacter(next.value))
      break;
    end += next.length;
  }
  return tag.substr(0, end);
}

/// Where the hashtag in progress begins (its "#"). Only the last "#" can begin it, because no tag holds one,
/// and it is one token, so a long text costs no more than a short one.
std::optional<std::size_t> beginOfHashtagInProgress(std::string_view text) {
  const void* lastSign = text.empty() ? nullptr : memrchr(text.data(), '#', text.size());
  if (lastSign == nullptr)
    return std::nullopt;
  const auto begin = static_cast<std::size_t>(static_cast<const char*>(lastSign) - text.data());
  if (!beginsToken(text, begin))
    return std::nullopt;
  const std::string_view token = tokenAt(text, begin);
  icu::RegexMatcher* pattern = completionPattern();
  if (begin + token.size() != text.size() || pattern == nullptr)
    return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString input = wide(token);
  if (pattern->reset(input).matches(status) == 0)
    return std::nullopt;
  return begin;
}

} // namespace

WordList parse(std::string_view text) {
  WordList tags;
  std::unordered_set<std::string> seen;
  // A match never reaches past white space and begins after it, so each token can be matched alone.
  for (std::size_t begin = text.find('#'); begin != std::string_view::npos;
       begin = text.find('#', begin + 1)) {
    if (!beginsToken(text, begin))
      continue;
    const std::string tag = leadingTag(tokenAt(text, begin));
    if (!tag.empty() && seen.insert(folded(tag)).second)
      tags.append(tag);
  }
  return tags;
}

std::optional<std::string> inProgressHashtag(std::string_view text) {
  const auto begin = beginOfHashtagInProgress(text);
  if (!begin)
    return std::nullopt;
  return std::string(text.substr(*begin + 1));
}

std::string writtenTag(std::string_view foldedTag) {
  std::string written;
  while (!foldedTag.empty()) {
    std::string_view piece = firstPiece(foldedTag);
    foldedTag.remove_prefix(piece.size());
    if (firstCodePoint(piece).length < piece.size()) {
      const std::vector<std::string>& whole = Unfolding::charactersOf(piece);
      const auto letter = std::ranges::find_if(whole, [](const std::string& character) {
        return isTagCharacter(firstCodePoint(character).value);
      });
      if (letter != whole.end())
        piece = *letter;
    }
    written.append(piece);
  }
  return written;
}

std::string completingHashtag(std::string_view tag, std::string_view text) {
  std::string result(text.substr(0, beginOfHashtagInProgress(text).value_or(text.size())));
  result.append("#").append(tag).append(" ");
  return result;
}

} // namespace notlet::HashtagParser
