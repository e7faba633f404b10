#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/Error.h"
#include "themes/AppTheme.h"

namespace notlet {

/// A theme file: a JSON array of theme objects and nothing else.
struct ThemeConfigurationDocument {
  std::vector<AppTheme> themes;

  /// What is taken from a file, which may be anybody's: bytes and themes.
  static constexpr std::size_t largestFile = 4U << 20U;
  static constexpr std::size_t mostThemesInFile = 1000;

  /// Fails when the text is no JSON array of objects that each hold every field with its type. Unknown fields
  /// are ignored.
  [[nodiscard]] static Result<ThemeConfigurationDocument> read(std::string_view json);
  /// The same for the contents of a file, which also fail when they are larger than what is taken.
  [[nodiscard]] static Result<ThemeConfigurationDocument> readFileContents(std::string_view json);
  /// Also fails when there is no regular file to read.
  [[nodiscard]] static Result<ThemeConfigurationDocument> readFile(const std::filesystem::path& file);

  /// Indented JSON with sorted keys.
  [[nodiscard]] std::string json() const;
  /// The same without white space, for keeping in the defaults.
  [[nodiscard]] std::string compactJson() const;
  [[nodiscard]] Result<void> writeFile(const std::filesystem::path& file) const;

  bool operator==(const ThemeConfigurationDocument&) const = default;
};

} // namespace notlet
