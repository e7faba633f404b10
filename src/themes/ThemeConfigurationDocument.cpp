#include "themes/ThemeConfigurationDocument.h"

#include <array>
#include <limits>

#include "platform/DurableFile.h"
#include "platform/JsonText.h"

namespace notlet {

namespace {

using Json = nlohmann::json;

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
    return failure(themeNumber(index) + "is not a theme.");
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

Result<ThemeConfigurationDocument> decode(std::string_view json, std::size_t largest,
                                          std::size_t mostThemes) {
  const Result<Json> parsed = parseJsonText(json, largest);
  if (!parsed)
    return failure("The file cannot be read: " + parsed.error().message);
  if (!parsed->is_array())
    return failure("The file holds no list of themes.");
  if (parsed->size() > mostThemes)
    return failure("The file holds " + std::to_string(parsed->size()) + " themes. At most " +
                   std::to_string(mostThemes) + " can be imported at once.");
  ThemeConfigurationDocument document;
  document.themes.reserve(parsed->size());
  for (std::size_t index = 0; index < parsed->size(); ++index) {
    auto theme = decodeTheme((*parsed)[index], index);
    if (!theme)
      return std::unexpected(theme.error());
    document.themes.push_back(std::move(*theme));
  }
  return document;
}

} // namespace

Result<ThemeConfigurationDocument> ThemeConfigurationDocument::read(std::string_view json) {
  constexpr std::size_t any = std::numeric_limits<std::size_t>::max();
  return decode(json, any, any);
}

Result<ThemeConfigurationDocument> ThemeConfigurationDocument::readFileContents(std::string_view json) {
  return decode(json, largestFile, mostThemesInFile);
}

Result<ThemeConfigurationDocument> ThemeConfigurationDocument::readFile(const std::filesystem::path& file) {
  const auto contents = readWholeFile(file, largestFile);
  if (!contents)
    return std::unexpected(contents.error());
  const std::optional<std::string>& text = *contents;
  if (!text)
    return failure("“" + file.string() + "” does not exist.");
  return readFileContents(*text);
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
