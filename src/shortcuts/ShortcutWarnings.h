#pragma once

#include <string>

#include "shortcuts/ShortcutField.h"

namespace notlet {

/// What the user should know of the key in a field: other fields that want the same key, and keys that nobody
/// can press. Whole sentences, joined by spaces; empty when there is nothing to say. Nothing of this keeps a
/// configuration from being saved.
[[nodiscard]] std::string shortcutWarning(const MacShortcutConfig& config, ShortcutField field);

} // namespace notlet
