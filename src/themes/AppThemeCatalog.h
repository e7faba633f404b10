#pragma once

#include <span>
#include <string_view>

#include "themes/AppTheme.h"

namespace notlet::AppThemeCatalog {

/// The themes that come with the program, in the order in which they are listed.
[[nodiscard]] std::span<const AppTheme> themes();

/// The built-in theme with exactly this identifier, else the theme "system".
[[nodiscard]] const AppTheme& themeWithID(std::string_view id);

/// Whether a built-in theme has exactly this identifier.
[[nodiscard]] bool contains(std::string_view id);

} // namespace notlet::AppThemeCatalog
