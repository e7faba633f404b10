#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/StopWords.h"

namespace notlet {

/// A search text read once, to be held against many notlets. All parts are folded. It asks for all the tags,
/// and for all the terms or, as it stands, the phrase; without tags and terms for the phrase alone. An empty
/// phrase matches everything.
struct SearchQuery {
  /// The whole query, trimmed. "I'm" or "e.g." are found by it alone: their letters are no keywords.
  std::string phrase;
  /// Each must equal a hashtag of the notlet.
  std::vector<std::string> tags;
  /// Each must stand in the text, or equal a hashtag or keyword.
  std::vector<std::string> terms;

  [[nodiscard]] static SearchQuery parse(std::string_view text,
                                         const StopWords& stopWords = StopWords::set());

  [[nodiscard]] bool matchesEverything() const { return phrase.empty(); }
  [[nodiscard]] bool isPlainPhrase() const { return tags.empty() && terms.empty(); }

  bool operator==(const SearchQuery&) const = default;
};

} // namespace notlet
