#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace notlet {

/// A colour theme. The colours are colour codes, stored as they are given and read through Rgb::fromHex.
struct AppTheme {
  /// Unique. Themes made by the user have "custom-" and an upper-case UUID.
  std::string id;
  std::string name;
  /// The heading under which the theme is listed; "Custom" for the user's own.
  std::string category;
  bool isDark = true;
  std::string backgroundHex;
  std::string surfaceHex;
  std::string primaryHex;
  std::string secondaryHex;
  std::string accentHex;
  std::string alternateAccentHex;
  /// The desktop's own colours are used instead of the theme's.
  bool followsSystem = false;

  bool operator==(const AppTheme&) const = default;
};

/// How the identifiers of the user's own themes begin.
inline constexpr std::string_view customThemePrefix = "custom-";
/// The category of the user's own themes.
inline constexpr std::string_view customThemeCategory = "Custom";

/// A fresh identifier for a theme of the user.
[[nodiscard]] std::string newCustomThemeID();

} // namespace notlet

template<>
struct std::hash<notlet::AppTheme> {
  /// Covers all fields.
  std::size_t operator()(const notlet::AppTheme& theme) const noexcept;
};
