#include "themes/AppSettings.h"

#include <QSignalBlocker>
#include <algorithm>

#include "themes/AppThemeCatalog.h"
#include "themes/ThemeConfigurationDocument.h"

namespace notlet {

namespace {

constexpr std::string_view firstTheme = "midnight-mono";
constexpr std::string_view fallbackTheme = "system";
constexpr std::int64_t currentVersion = 1;

/// Nobody's work is lost: what was read or found at the start goes with the first change.
void ignoreFailure(const Result<void>& written) {
  static_cast<void>(written);
}

std::string selectionAtStart(const Defaults& defaults) {
  const auto stored = defaults.string(AppSettings::selectedThemeKey);
  if (!stored)
    return std::string(firstTheme);
  // Version 0 is from before there was a first theme of its own: "system" was nobody's choice then.
  const bool chosen = defaults.integer(AppSettings::versionKey).value_or(0) >= currentVersion;
  return !chosen && *stored == fallbackTheme ? std::string(firstTheme) : *stored;
}

} // namespace

struct AppSettings::Before {
  AppTheme theme;
  std::string selectedThemeID;
  std::vector<AppTheme> customThemes;
};

AppSettings::AppSettings(Defaults& defaults, QObject* parent)
    : QObject(parent), m_defaults(defaults), m_selectedThemeID(selectionAtStart(defaults)) {
  readCustomThemes();
  ignoreFailure(m_defaults.setInteger(versionKey, currentVersion));
  ignoreFailure(m_defaults.setString(selectedThemeKey, m_selectedThemeID));
}

AppSettings::~AppSettings() {
  const QSignalBlocker nobodyListens(this);
  tryAgain();
}

const AppTheme& AppSettings::theme() const {
  const auto custom = std::ranges::find(m_customThemes, m_selectedThemeID, &AppTheme::id);
  return custom == m_customThemes.end() ? AppThemeCatalog::themeWithID(m_selectedThemeID) : *custom;
}

void AppSettings::setSelectedThemeID(std::string_view id) {
  const Before old = before();
  m_selectedThemeID = id;
  persistSelection();
  announce(old);
}

void AppSettings::saveCustomTheme(const AppTheme& theme) {
  if (AppThemeCatalog::contains(theme.id))
    return;
  const Before old = before();
  addOrReplace(theme);
  persistCustomThemes();
  m_selectedThemeID = theme.id;
  persistSelection();
  announce(old);
}

void AppSettings::deleteCustomTheme(const AppTheme& theme) {
  const Before old = before();
  // The argument may be an element of the list itself.
  const std::string id = theme.id;
  std::erase_if(m_customThemes, [&id](const AppTheme& custom) { return custom.id == id; });
  persistCustomThemes();
  if (m_selectedThemeID == id) {
    m_selectedThemeID = fallbackTheme;
    persistSelection();
  }
  announce(old);
}

void AppSettings::importCustomThemes(const std::vector<AppTheme>& themes) {
  const Before old = before();
  for (AppTheme theme : themes) {
    if (!theme.id.starts_with(customThemePrefix))
      theme.id = newCustomThemeID();
    theme.category = customThemeCategory;
    theme.followsSystem = false;
    addOrReplace(theme);
  }
  persistCustomThemes();
  announce(old);
}

void AppSettings::readCustomThemes() {
  const auto stored = m_defaults.binary(customThemesKey);
  if (!stored)
    return;
  if (auto document = ThemeConfigurationDocument::read(*stored))
    m_customThemes = std::move(document->themes);
  else
    m_unreadableThemes = *stored;
}

void AppSettings::persistSelection() {
  noteWritten(m_defaults.setString(selectedThemeKey, m_selectedThemeID));
}

void AppSettings::persistCustomThemes() {
  keepUnreadableThemes();
  const std::string json = ThemeConfigurationDocument{m_customThemes}.compactJson();
  noteWritten(m_defaults.setBinary(customThemesKey, json));
}

void AppSettings::noteWritten(const Result<void>& written) {
  m_isWritten = written.has_value();
  setWarning(m_isWritten ? std::string()
                         : "Your themes are not stored yet. " + written.error().message +
                               " Notlet tries again when you come back to it and when it ends.");
}

void AppSettings::setWarning(std::string warning) {
  if (m_warning == warning)
    return;
  m_warning = std::move(warning);
  Q_EMIT warningChanged();
}

// The whole suite goes with any value of it.
void AppSettings::tryAgain() {
  if (!m_isWritten && m_defaults.setString(selectedThemeKey, m_selectedThemeID))
    noteWritten({});
}

// Themes that this version cannot read may be readable to a later one, or to their owner.
void AppSettings::keepUnreadableThemes() {
  if (m_unreadableThemes.empty())
    return;
  std::string key;
  for (int number = 1; key.empty() || m_defaults.binary(key); ++number)
    key = std::string(customThemesKey) + ".unreadable-" + std::to_string(number);
  ignoreFailure(m_defaults.setBinary(key, m_unreadableThemes));
  m_unreadableThemes.clear();
}

void AppSettings::addOrReplace(const AppTheme& theme) {
  const auto existing = std::ranges::find(m_customThemes, theme.id, &AppTheme::id);
  if (existing == m_customThemes.end())
    m_customThemes.push_back(theme);
  else
    *existing = theme;
}

AppSettings::Before AppSettings::before() const {
  return {theme(), m_selectedThemeID, m_customThemes};
}

void AppSettings::announce(const Before& old) {
  if (theme() != old.theme)
    Q_EMIT themeChanged();
  if (m_selectedThemeID != old.selectedThemeID || m_customThemes != old.customThemes)
    Q_EMIT changed();
}

} // namespace notlet
