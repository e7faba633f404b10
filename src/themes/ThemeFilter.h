#pragma once

#include <string>
#include <string_view>

#include "themes/AppTheme.h"

namespace notlet {

/// Finds themes by a part of their name or category, without regard to letter case in the user's language.
class ThemeFilter {
 public:
  /// The search text as typed, and the name of a locale such as "tr_TR". An empty text admits every theme.
  ThemeFilter(std::string_view searchText, std::string_view localeName);

  [[nodiscard]] bool admits(const AppTheme& theme) const;

 private:
  [[nodiscard]] std::string folded(std::string_view text) const;

  /// In Turkish and Azerbaijani "I" is the capital of "ı".
  bool m_hasDotlessI;
  std::string m_needle;
};

/// The locale that the user's environment names.
[[nodiscard]] std::string userLocaleName();

} // namespace notlet
