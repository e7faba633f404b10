#pragma once

#include <string_view>

#include "core/NotletEntry.h"
#include "core/SearchQuery.h"

/// The rule by which a search finds notlets. FoldedArchive applies the same rule to many notlets at once.
namespace notlet::SearchService {

[[nodiscard]] bool matches(const NotletEntry& notlet, std::string_view query);
[[nodiscard]] bool matches(const NotletEntry& notlet, const SearchQuery& query);

} // namespace notlet::SearchService
