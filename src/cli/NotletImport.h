#pragma once

#include <string_view>
#include <vector>

#include "cli/CommandError.h"
#include "core/NotletEntry.h"

namespace notlet {

/// Reads the JSON array that `notlet export` writes. Identities and times are kept, hashtags and keywords
/// come from the content anew. Of several notlets with one id the first counts; they all are in the result.
/// Fails as a whole, with the line and column at which the text stops being such an array.
[[nodiscard]] CommandResult<std::vector<NotletEntry>> parseNotlets(std::string_view text);

} // namespace notlet
