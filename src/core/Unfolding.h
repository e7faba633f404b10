#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The way back from folded text (see folded()) to what may have been written.
namespace notlet::Unfolding {

/// The single characters, other than the text itself, that fold to this text: "I" for "i", "İ" for "i̇". Most
/// texts have none.
[[nodiscard]] std::vector<std::string> charactersOf(std::string_view foldedText);

} // namespace notlet::Unfolding
