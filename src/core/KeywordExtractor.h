#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/StopWords.h"
#include "core/WordList.h"

/// Turns free text into words, cut by the rules of Unicode (with dictionaries for languages that are written
/// without spaces), which are the same whatever the user's language. Only letters and digits stay in a word:
/// "don't" gives "dont".
namespace notlet::KeywordExtractor {

/// The words to store with a notlet, as first written, in order of first appearance: no stop words, none
/// shorter than three characters, none repeated in other letter case.
[[nodiscard]] WordList extractKeywords(std::string_view text, const StopWords& stopWords = StopWords::set());

/// Those of these keywords that come from text with a full stop between letters: "READMEmd". Some languages
/// part words there, and stores hold notlets without them from when the user's language cut the words.
[[nodiscard]] WordList extractDottedKeywords(std::string_view text,
                                             const StopWords& stopWords = StopWords::set());

/// The pieces of text with such a full stop, each followed by a space; mostly there are none.
[[nodiscard]] std::string dottedPieces(std::string_view text);

/// The folded words to look for, each once, of any length, without stop words.
[[nodiscard]] std::vector<std::string> extractSearchTerms(std::string_view text,
                                                          const StopWords& stopWords = StopWords::set());

} // namespace notlet::KeywordExtractor
