#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/WordList.h"

/// What counts as a hashtag: "#" at the start of the text or after white space, then letters, numbers, "_" or
/// "-". Tags are handed out without the "#".
namespace notlet::HashtagParser {

/// The hashtags in order of first appearance, as first written; none is repeated in other letter case.
[[nodiscard]] WordList parse(std::string_view text);

/// The tag being typed at the very end of the text, empty directly after "#"; nothing when there is none.
[[nodiscard]] std::optional<std::string> inProgressHashtag(std::string_view text);

/// A folded tag in the letters in which it can be written: the nearest to its folded form that parse() gives
/// back as one tag. "i̇z" stays together as "İz" only.
[[nodiscard]] std::string writtenTag(std::string_view foldedTag);

/// The text with its hashtag in progress replaced by "#tag "; appended as it is when there is none.
[[nodiscard]] std::string completingHashtag(std::string_view tag, std::string_view text);

} // namespace notlet::HashtagParser
