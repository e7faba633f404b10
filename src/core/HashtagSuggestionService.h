#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/NotletEntry.h"

/// Ranks the hashtags in use. HashtagTallies gives the same answers for notlets that come and go.
namespace notlet::HashtagSuggestionService {

/// All tags, lowercase as far as they can be written so (HashtagParser::writtenTag), the most used first;
/// between equal counts the one used later by `createdAt`; between equal times in the order of their folded
/// bytes.
[[nodiscard]] std::vector<std::string> usedHashtags(std::span<const NotletEntry> notlets);

/// The first `limit` used tags that begin with the prefix, in any letter case, and are longer than it.
[[nodiscard]] std::vector<std::string> suggestions(std::string_view prefix,
                                                   std::span<const NotletEntry> notlets, std::size_t limit);
/// The same from tags that are ranked already.
[[nodiscard]] std::vector<std::string> suggestions(std::string_view prefix,
                                                   std::span<const std::string> ranked, std::size_t limit);

} // namespace notlet::HashtagSuggestionService
