#include "cli/Selection.h"

#include <algorithm>

#include "core/HashtagParser.h"
#include "core/SearchService.h"
#include "core/Text.h"

namespace notlet {
namespace {

std::string_view withoutSign(std::string_view tag) {
  if (tag.starts_with('#'))
    tag.remove_prefix(1);
  return tag;
}

} // namespace

CommandResult<std::vector<std::string>> checkedTags(const std::vector<std::string>& tags) {
  std::vector<std::string> checked;
  for (const std::string& given : tags) {
    const std::string_view tag = withoutSign(given);
    if (!isValidUtf8(tag))
      return commandFailure("A tag is not UTF-8.");
    const WordList parsed = HashtagParser::parse(std::string("#").append(tag));
    if (parsed.size() != 1 || *parsed.begin() != tag)
      return usageFailure(inQuotes(given) + " is not a hashtag: it takes letters, numbers, “_” and “-”.");
    checked.emplace_back(tag);
  }
  return checked;
}

std::string withTags(std::string_view text, const std::vector<std::string>& tags) {
  std::string result(text);
  std::vector<std::string> carried;
  for (const std::string_view tag : HashtagParser::parse(text))
    carried.push_back(folded(tag));
  for (const std::string& tag : tags) {
    if (std::ranges::find(carried, folded(tag)) != carried.end())
      continue;
    carried.push_back(folded(tag));
    result.append(" #").append(tag);
  }
  return result;
}

CommandResult<Selection> Selection::make(std::string_view query, const std::vector<std::string>& tags) {
  const CommandResult<std::vector<std::string>> checked = checkedTags(tags);
  if (!checked)
    return std::unexpected(checked.error());
  Selection selection;
  if (!query.empty())
    selection.m_query = SearchQuery::parse(query);
  for (const std::string& tag : *checked) {
    selection.m_tags.tags.push_back(folded(tag));
    selection.m_tags.phrase += " #" + selection.m_tags.tags.back();
  }
  return selection;
}

bool Selection::holds(const NotletEntry& notlet) const {
  return SearchService::matches(notlet, m_tags) && SearchService::matches(notlet, m_query);
}

void TagCounts::add(const NotletEntry& notlet) {
  m_ranking.add(notlet);
  for (const std::string_view tag : notlet.hashtags)
    ++m_counts[folded(tag)];
}

std::vector<TagCount> TagCounts::beginningWith(std::string_view prefix) const {
  const std::string foldedPrefix = folded(withoutSign(prefix));
  std::vector<TagCount> found;
  for (const std::string& tag : m_ranking.usedHashtags()) {
    const std::string key = folded(tag);
    if (startsWithCanonically(key, foldedPrefix))
      found.push_back({.tag = tag, .count = m_counts.at(key)});
  }
  return found;
}

} // namespace notlet
