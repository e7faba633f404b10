#include "core/NotletEntry.h"

#include <algorithm>

#include "core/HashtagParser.h"
#include "core/KeywordExtractor.h"
#include "core/Text.h"

namespace notlet {

namespace {

void giveContent(NotletEntry& notlet, std::string_view content) {
  notlet.content = content;
  notlet.hashtags = HashtagParser::parse(content);
  notlet.keywords = KeywordExtractor::extractKeywords(content);
}

bool isAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char byte) { return (byte & 0x80) == 0; });
}

/// Where the word next stands in the text so that its neighbours have no say in how it is folded, or npos.
std::size_t findByItself(std::string_view text, std::string_view word, std::size_t from) {
  // An apostrophe or a full stop may stand inside a word, which lets some letters be folded differently.
  constexpr std::string_view parting = " \n\t,;!?()\"#";
  const auto isNoNeighbour = [&](char byte) {
    return isAscii(word) ? (byte & 0x80) == 0 : parting.contains(byte);
  };
  std::size_t found = text.find(word, from);
  while (found != std::string_view::npos) {
    const std::size_t end = found + word.size();
    if ((found == 0 || isNoNeighbour(text[found - 1])) && (end == text.size() || isNoNeighbour(text[end])))
      break;
    found = text.find(word, found + 1);
  }
  return found;
}

} // namespace

WordList keywordsBeyondText(std::string_view text, WordList::View keywords) {
  WordList::Builder beyond;
  std::size_t from = 0;
  for (const std::string_view word : keywords) {
    // They come in the order of the text.
    std::size_t found = findByItself(text, word, from);
    if (found == std::string_view::npos)
      found = findByItself(text, word, 0);
    if (found == std::string_view::npos)
      beyond.append(word);
    else
      from = found + word.size();
  }
  return beyond.list();
}

std::optional<NotletEntry> makeNotlet(std::string_view text, Timestamp now) {
  const std::string_view content = trimmed(text);
  if (content.empty())
    return std::nullopt;
  NotletEntry notlet;
  notlet.id = Uuid::random();
  notlet.createdAt = now;
  giveContent(notlet, content);
  return notlet;
}

bool applyEdit(NotletEntry& notlet, std::string_view draft, Timestamp now) {
  // A copy: the draft may be a view of the content that is about to change.
  const std::string content(trimmed(draft));
  if (content.empty())
    return false;
  giveContent(notlet, content);
  notlet.updatedAt = now;
  return true;
}

} // namespace notlet
