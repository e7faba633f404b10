#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cli/CommandError.h"
#include "core/HashtagTallies.h"
#include "core/NotletEntry.h"
#include "core/SearchQuery.h"

namespace notlet {

/// The tags without "#"; fails with the first that cannot be a hashtag.
[[nodiscard]] CommandResult<std::vector<std::string>> checkedTags(const std::vector<std::string>& tags);

/// The text, with each tag that it does not carry yet appended as " #tag".
[[nodiscard]] std::string withTags(std::string_view text, const std::vector<std::string>& tags);

/// The notlets that a query finds and that carry all of some tags.
class Selection {
 public:
  /// An empty query finds every notlet. Fails when a tag cannot be a hashtag.
  [[nodiscard]] static CommandResult<Selection> make(std::string_view query,
                                                     const std::vector<std::string>& tags);

  [[nodiscard]] bool holds(const NotletEntry& notlet) const;
  [[nodiscard]] bool holdsEverything() const {
    return m_query.matchesEverything() && m_tags.matchesEverything();
  }

  [[nodiscard]] const SearchQuery& query() const { return m_query; }
  /// Looks for the tags beside the query; empty without them.
  [[nodiscard]] const SearchQuery& tags() const { return m_tags; }

 private:
  SearchQuery m_query;
  SearchQuery m_tags;
};

struct TagCount {
  std::string tag;
  std::size_t count = 0;

  bool operator==(const TagCount&) const = default;
};

/// The hashtags in use with the number of notlets that carry each.
class TagCounts {
 public:
  void add(const NotletEntry& notlet);
  /// In a form that checkedTags() takes, most used first; a leading "#" of the prefix does not count.
  [[nodiscard]] std::vector<TagCount> beginningWith(std::string_view prefix) const;

 private:
  HashtagTallies m_ranking;
  std::unordered_map<std::string, std::size_t> m_counts;
};

} // namespace notlet
