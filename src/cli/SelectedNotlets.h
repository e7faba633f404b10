#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "cli/CommandStore.h"
#include "cli/Selection.h"

namespace notlet {

/// Writes the notlets that the selection holds, newest first, up to the limit. `print` is asked for each at
/// any time and in any order; `write` gets what it gave, in the order of the list, until it returns false.
[[nodiscard]] CommandResult<void> writeSelected(CommandStore& store, const Selection& selection,
                                                std::optional<std::size_t> limit,
                                                const std::function<std::string(const NotletEntry&)>& print,
                                                const std::function<bool(std::string_view)>& write);

} // namespace notlet
