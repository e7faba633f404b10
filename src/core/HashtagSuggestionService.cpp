#include "core/HashtagSuggestionService.h"

#include <algorithm>
#include <map>

#include "core/HashtagParser.h"
#include "core/Text.h"

namespace notlet::HashtagSuggestionService {

namespace {

struct Tally {
  std::size_t uses = 0;
  Timestamp latest = Timestamp::min();
};

} // namespace

std::vector<std::string> usedHashtags(std::span<const NotletEntry> notlets) {
  std::map<std::string, Tally> tallies;
  for (const NotletEntry& notlet : notlets) {
    for (const std::string_view tag : notlet.hashtags) {
      Tally& tally = tallies[folded(tag)];
      ++tally.uses;
      tally.latest = std::max(tally.latest, notlet.createdAt);
    }
  }
  std::vector<std::string> tags;
  tags.reserve(tallies.size());
  for (const auto& [tag, tally] : tallies)
    tags.push_back(tag);
  std::ranges::stable_sort(tags, [&](const std::string& left, const std::string& right) {
    const Tally& ours = tallies.at(left);
    const Tally& theirs = tallies.at(right);
    return ours.uses != theirs.uses ? ours.uses > theirs.uses : ours.latest > theirs.latest;
  });
  std::ranges::transform(tags, tags.begin(), HashtagParser::writtenTag);
  return tags;
}

std::vector<std::string> suggestions(std::string_view prefix, std::span<const NotletEntry> notlets,
                                     std::size_t limit) {
  return suggestions(prefix, usedHashtags(notlets), limit);
}

std::vector<std::string> suggestions(std::string_view prefix, std::span<const std::string> ranked,
                                     std::size_t limit) {
  const std::string beginning = folded(prefix);
  std::vector<std::string> chosen;
  for (const std::string& tag : ranked) {
    if (chosen.size() >= limit)
      break;
    const std::string key = folded(tag);
    if (key != beginning && startsWithCanonically(key, beginning))
      chosen.push_back(tag);
  }
  return chosen;
}

} // namespace notlet::HashtagSuggestionService
