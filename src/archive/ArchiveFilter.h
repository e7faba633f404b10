#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "core/NotletEntry.h"
#include "core/SearchQuery.h"

namespace notlet {

/// What the archive is narrowed to: a text search, and hashtags that a notlet must carry all.
struct ArchiveFilter {
  /// Everything that the search asks for, with the selected tags among its own where they fit.
  SearchQuery search;
  /// The selected tags, when the search looks for a plain phrase and can take no tags.
  std::optional<SearchQuery> tagsBesidePhrase;

  /// The tags must be folded.
  [[nodiscard]] static ArchiveFilter make(std::string_view searchText, const std::set<std::string>& tags);

  [[nodiscard]] bool admitsEverything() const { return search.matchesEverything(); }
  /// The plain rule for one notlet.
  [[nodiscard]] bool admits(const NotletEntry& notlet) const;

  bool operator==(const ArchiveFilter&) const = default;
};

} // namespace notlet
