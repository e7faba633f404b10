#include "core/SearchQuery.h"

#include "core/HashtagParser.h"
#include "core/KeywordExtractor.h"
#include "core/Text.h"

namespace notlet {

SearchQuery SearchQuery::parse(std::string_view text, const StopWords& stopWords) {
  SearchQuery query;
  const std::string_view phrase = trimmed(text);
  if (phrase.empty())
    return query;
  query.phrase = folded(phrase);
  for (const std::string_view tag : HashtagParser::parse(phrase))
    query.tags.push_back(folded(tag));
  query.terms = KeywordExtractor::extractSearchTerms(phrase, stopWords);
  return query;
}

} // namespace notlet
