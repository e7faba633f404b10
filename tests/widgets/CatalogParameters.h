#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>

#include "themes/AppThemeCatalog.h"

namespace notlet {

inline void PrintTo(const AppTheme& theme, std::ostream* out) {
  *out << theme.id;
}

/// All themes of the catalog as parameters of a test, under their names.
inline auto everyTheme() {
  return testing::ValuesIn(AppThemeCatalog::themes());
}

inline std::string themeTestName(const testing::TestParamInfo<AppTheme>& theme) {
  std::string name = theme.param.id;
  std::ranges::replace(name, '-', '_');
  return name;
}

} // namespace notlet
