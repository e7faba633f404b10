#include "themes/ThemeConfigurationDocument.h"

#include <array>
#include <nlohmann/json.hpp>

#include "platform/DurableFile.h"

namespace notlet {

namespace {

using Json = nlohmann::json;

constexpr std::size_t largestFile = 64U << 20U;

struct TextField {
  const char* key;
  std::string AppTheme::* member;
};

struct FlagField {
  const char* key;
  bool AppTheme::* member;
};

constexpr std::array textFields = std::to_array<TextField>({
    {"id", &AppTheme::id},
    {"name", &AppTheme::name},
    {"category", &AppTheme::category},
    {"backgroundHex", &AppTheme::backgroundHex},
    {"surfaceHex", &AppTheme::surfaceHex},
    {"primaryHex", &AppTheme::primaryHex},
    {"secondaryHex", &AppTheme::secondaryHex},
    {"accentHex", &AppTheme::accentHex},
    {"alternateAccentHex", &AppTheme::alternateAccentHex},
});

constexpr std::array flagFields = std::to_array<FlagField>({
    {"isDark", &AppTheme::isDark},
    {"followsSystem", &AppTheme::followsSystem},
});

std::string themeNumber(std::size_t index) {
  return "Theme " + std::to_string(index + 1) + " in the file ";
}

Result<AppTheme> decodeTheme(const Json& object, std::size_t index) {
  if (!object.is_object())
    return failure(themeNumber(index) + "is not a theme object.");
  AppTheme theme;
  for (const auto& [key, member] : textFields) {
    const auto found = object.find(key);
    if (found == object.end())
      return failure(themeNumber(index) + "lacks \"" + key + "\".");
    if (!found->is_string())
      return failure(themeNumber(index) + "has no text for \"" + key + "\".");
    theme.*member = found->get_ref<const std::string&>();
  }
  for (const auto& [key, member] : flagFields) {
    const auto found = object.find(key);
    if (found == object.end())
      return failure(themeNumber(index) + "lacks \"" + key + "\".");
    if (!found->is_boolean())
      return failure(themeNumber(index) + "has neither true nor false for \"" + key + "\".");
    theme.*member = found->get<bool>();
  }
  return theme;
}

Json encodeTheme(const AppTheme& theme) {
  Json object = Json::object();
  for (const auto& [key, member] : textFields)
    object[key] = theme.*member;
  for (const auto& [key, member] : flagFields)
    object[key] = theme.*member;
  return object;
}

std::string encode(const std::vector<AppTheme>& themes, int indent) {
  Json array = Json::array();
  for (const AppTheme& theme : themes)
    array.push_back(encodeTheme(theme));
  return array.dump(indent, ' ', false, Json::error_handler_t::replace);
}

} // namespace

Result<ThemeConfigurationDocument> ThemeConfigurationDocument::read(std::string_view json) {
  const Json parsed = Json::parse(json, nullptr, false);
  if (parsed.is_discarded())
    return failure("The file is not valid JSON.");
  if (!parsed.is_array())
    return failure("The file holds no list of themes.");
  ThemeConfigurationDocument document;
  document.themes.reserve(parsed.size());
  for (std::size_t index = 0; index < parsed.size(); ++index) {
    auto theme = decodeTheme(parsed[index], index);
    if (!theme)
      return std::unexpected(theme.error());
    document.themes.push_back(std::move(*theme));
  }
  return document;
}

Result<ThemeConfigurationDocument> ThemeConfigurationDocument::readFile(const std::filesystem::path& file) {
  const auto contents = readWholeFile(file, largestFile);
  if (!contents)
    return std::unexpected(contents.error());
  const std::optional<std::string>& text = *contents;
  if (!text)
    return failure("The file " + file.string() + " does not exist.");
  return read(*text);
}

std::string ThemeConfigurationDocument::json() const {
  return encode(themes, 2) + '\n';
}

std::string ThemeConfigurationDocument::compactJson() const {
  return encode(themes, -1);
}

Result<void> ThemeConfigurationDocument::writeFile(const std::filesystem::path& file) const {
  return writeDurably(file, json(), 0644);
}

} // namespace notlet
