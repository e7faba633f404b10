#include "core/SearchService.h"

#include <algorithm>

#include "core/KeywordExtractor.h"
#include "core/Text.h"

namespace notlet::SearchService {

namespace {

bool holdsWord(const WordList& words, std::string_view foldedWord) {
  return std::any_of(words.begin(), WordList::end(),
                     [&](std::string_view word) { return folded(word) == foldedWord; });
}

} // namespace

bool matches(const NotletEntry& notlet, std::string_view query) {
  return matches(notlet, SearchQuery::parse(query));
}

bool matches(const NotletEntry& notlet, const SearchQuery& query) {
  if (query.matchesEverything())
    return true;
  const auto carriesTag = [&](const std::string& tag) { return holdsWord(notlet.hashtags, tag); };
  if (!std::ranges::all_of(query.tags, carriesTag))
    return false;
  const std::string text = folded(notlet.content);
  if (containsCanonically(text, query.phrase))
    return true;
  const auto carriesTerm = [&](const std::string& term) {
    return containsCanonically(text, term) || carriesTag(term) || holdsWord(notlet.keywords, term) ||
           holdsWord(KeywordExtractor::extractDottedKeywords(notlet.content), term);
  };
  return !query.isPlainPhrase() && std::ranges::all_of(query.terms, carriesTerm);
}

} // namespace notlet::SearchService
