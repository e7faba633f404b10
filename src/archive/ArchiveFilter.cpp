#include "archive/ArchiveFilter.h"

#include "core/SearchService.h"

namespace notlet {

namespace {

/// A query without text; its phrase only tells that it does not match everything.
SearchQuery queryOfTags(const std::set<std::string>& tags) {
  SearchQuery query;
  query.phrase = "#" + *tags.begin();
  query.tags.assign(tags.begin(), tags.end());
  return query;
}

} // namespace

ArchiveFilter ArchiveFilter::make(std::string_view searchText, const std::set<std::string>& tags) {
  ArchiveFilter filter{SearchQuery::parse(searchText), std::nullopt};
  if (tags.empty())
    return filter;
  if (filter.search.matchesEverything())
    filter.search = queryOfTags(tags);
  else if (filter.search.isPlainPhrase())
    filter.tagsBesidePhrase = queryOfTags(tags);
  else
    filter.search.tags.insert(filter.search.tags.end(), tags.begin(), tags.end());
  return filter;
}

bool ArchiveFilter::admits(const NotletEntry& notlet) const {
  return SearchService::matches(notlet, search) &&
         (!tagsBesidePhrase || SearchService::matches(notlet, *tagsBesidePhrase));
}

} // namespace notlet
