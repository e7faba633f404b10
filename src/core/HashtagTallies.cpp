#include "core/HashtagTallies.h"

#include <algorithm>

#include "core/HashtagParser.h"
#include "core/HashtagSuggestionService.h"

namespace notlet {

void HashtagTallies::Tally::forgetRemoved() {
  while (!removed.empty() && removed.top() == times.top()) {
    removed.pop();
    times.pop();
  }
}

void HashtagTallies::add(const NotletEntry& notlet) {
  for (const std::string_view tag : notlet.hashtags) {
    Entry& entry = *m_tallies.try_emplace(folded(tag)).first;
    ++entry.second.uses;
    entry.second.times.push(notlet.createdAt);
    markChanged(entry);
  }
}

void HashtagTallies::remove(const NotletEntry& notlet) {
  for (const std::string_view tag : notlet.hashtags) {
    const auto found = m_tallies.find(folded(tag));
    if (found == m_tallies.end() || found->second.uses == 0)
      continue;
    Tally& tally = found->second;
    --tally.uses;
    tally.removed.push(notlet.createdAt);
    tally.forgetRemoved();
    markChanged(*found);
  }
}

void HashtagTallies::clear() {
  m_ranking.clear();
  m_changed.clear();
  m_usedHashtags.clear();
  m_tallies.clear();
}

const std::vector<std::string>& HashtagTallies::usedHashtags() const {
  bringUpToDate();
  return m_usedHashtags;
}

bool HashtagTallies::isUsed(std::string_view tag) const {
  const auto found = m_tallies.find(tag);
  return found != m_tallies.end() && found->second.uses > 0;
}

std::vector<std::string> HashtagTallies::suggestions(std::string_view prefix, std::size_t limit) const {
  return HashtagSuggestionService::suggestions(prefix, usedHashtags(), limit);
}

bool HashtagTallies::ranksBefore(const Entry* left, const Entry* right) {
  if (left->second.uses != right->second.uses)
    return left->second.uses > right->second.uses;
  if (left->second.latest() != right->second.latest())
    return left->second.latest() > right->second.latest();
  return left->first < right->first;
}

void HashtagTallies::markChanged(Entry& entry) {
  if (entry.second.changed)
    return;
  entry.second.changed = true;
  m_changed.push_back(&entry);
}

/// Puts the changed tags, usually a few, at their new places among the others, whose order stands.
void HashtagTallies::bringUpToDate() const {
  if (m_changed.empty())
    return;
  std::erase_if(m_ranking, [](const Entry* entry) { return entry->second.changed; });
  for (Entry* entry : m_changed)
    entry->second.changed = false;
  // A tag that nobody uses any more stays as an empty tally, outside the ranking.
  std::erase_if(m_changed, [](const Entry* entry) { return entry->second.uses == 0; });
  std::ranges::sort(m_changed, ranksBefore);
  const auto unchanged = static_cast<std::ptrdiff_t>(m_ranking.size());
  m_ranking.insert(m_ranking.end(), m_changed.begin(), m_changed.end());
  std::ranges::inplace_merge(m_ranking, m_ranking.begin() + unchanged, ranksBefore);
  m_changed.clear();
  m_usedHashtags.clear();
  for (const Entry* entry : m_ranking)
    m_usedHashtags.push_back(HashtagParser::writtenTag(entry->first));
}

} // namespace notlet
