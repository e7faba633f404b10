#pragma once

#include <string>
#include <utility>

#include "themes/AppThemeCatalog.h"

namespace notlet {

/// A theme as a user makes one.
inline AppTheme customTheme(std::string id, std::string name = "Mine") {
  AppTheme theme = AppThemeCatalog::themeWithID("nord");
  theme.id = std::move(id);
  theme.name = std::move(name);
  theme.category = customThemeCategory;
  return theme;
}

} // namespace notlet
