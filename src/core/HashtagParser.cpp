#include "core/HashtagParser.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cstring>
#include <unordered_set>

#include "core/Text.h"
#include "core/Unfolding.h"

namespace notlet::HashtagParser {

namespace {

/// Letters, numbers, "_" and "-".
bool isTagCharacter(char32_t character) {
  return character == '_' || character == '-' ||
         (U_GET_GC_MASK(static_cast<UChar32>(character)) & (U_GC_L_MASK | U_GC_N_MASK)) != 0;
}

/// What a text begins with that can stand in a tag.
std::string_view leadingTagCharacters(std::string_view text) {
  std::size_t end = 0;
  while (end < text.size()) {
    const CodePoint next = firstCodePoint(text.substr(end));
    if (!isTagCharacter(next.value))
      break;
    end += next.length;
  }
  return text.substr(0, end);
}

bool beginsToken(std::string_view text, std::size_t position) {
  return position == 0 || isWhiteSpace(lastCodePoint(text.substr(0, position)).value);
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

/// Where the hashtag in progress begins (its "#"). Only the last "#" can begin it, because no tag holds one.
std::optional<std::size_t> beginOfHashtagInProgress(std::string_view text) {
  const void* lastSign = text.empty() ? nullptr : memrchr(text.data(), '#', text.size());
  if (lastSign == nullptr)
    return std::nullopt;
  const auto begin = static_cast<std::size_t>(static_cast<const char*>(lastSign) - text.data());
  const std::string_view behind = text.substr(begin + 1);
  if (!beginsToken(text, begin) || leadingTagCharacters(behind).size() != behind.size())
    return std::nullopt;
  return begin;
}

} // namespace

WordList parse(std::string_view text) {
  WordList::Builder tags;
  std::unordered_set<std::string> seen;
  for (std::size_t begin = text.find('#'); begin != std::string_view::npos;
       begin = text.find('#', begin + 1)) {
    if (!beginsToken(text, begin))
      continue;
    const std::string_view tag = leadingTagCharacters(text.substr(begin + 1));
    if (!tag.empty() && seen.insert(folded(tag)).second)
      tags.append(tag);
  }
  return tags.list();
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
    const std::string_view piece = firstPiece(foldedTag);
    foldedTag.remove_prefix(piece.size());
    if (firstCodePoint(piece).length < piece.size()) {
      const std::vector<std::string> whole = Unfolding::charactersOf(piece);
      const auto letter = std::ranges::find_if(whole, [](const std::string& character) {
        return isTagCharacter(firstCodePoint(character).value);
      });
      written.append(letter != whole.end() ? *letter : piece);
      continue;
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
