#pragma once

#include <string>

#include "core/Error.h"
#include "platform/KeyPress.h"
#include "shortcuts/ShortcutField.h"

namespace notlet {

/// What a field must hold so that this key does what the field stands for. Fails, with a sentence for the
/// user, when no text of the field means this key.
[[nodiscard]] Result<std::string> recordedKey(ShortcutField field, const KeyPress& press);

} // namespace notlet
