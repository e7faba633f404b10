#include "core/NotletEntry.h"

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

} // namespace

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
