#include "themes/ThemeBrowser.h"

#include <QPointer>
#include <algorithm>

#include "themes/AppThemeCatalog.h"
#include "themes/ThemeConfigurationDocument.h"
#include "themes/ThemeFilter.h"

namespace notlet {

ThemeBrowser::ThemeBrowser(Surroundings surroundings, QObject* parent)
    : QObject(parent), m_surroundings(std::move(surroundings)) {
  filterThemes();
  connect(&settings(), &AppSettings::changed, this, &ThemeBrowser::followSettings);
}

std::vector<std::string> ThemeBrowser::categories() const {
  std::vector<std::string> found;
  for (const AppTheme& theme : m_filteredThemes) {
    if (std::ranges::find(found, theme.category) == found.end())
      found.push_back(theme.category);
  }
  return found;
}

/// The one place where the state changes.
void ThemeBrowser::update(const std::function<void(State&)>& change) {
  const State before = m_state;
  change(m_state);
  if (m_state == before)
    return;
  if (m_state.searchText != before.searchText) {
    m_state.activeThemeID.reset();
    filterThemes();
  }
  Q_EMIT changed();
}

void ThemeBrowser::followSettings() {
  filterThemes();
  // Keys could not move on from a theme that is gone.
  const auto& id = m_state.activeThemeID;
  if (id &&
      std::ranges::find(settings().customThemes(), *id, &AppTheme::id) == settings().customThemes().end() &&
      !AppThemeCatalog::contains(*id))
    m_state.activeThemeID.reset();
  Q_EMIT changed();
}

void ThemeBrowser::filterThemes() {
  const ThemeFilter filter(m_state.searchText, m_surroundings.localeName);
  const auto admitted = [&filter](const AppTheme& theme) { return filter.admits(theme); };
  m_filteredThemes.clear();
  std::ranges::copy_if(AppThemeCatalog::themes(), std::back_inserter(m_filteredThemes), admitted);
  std::ranges::copy_if(settings().customThemes(), std::back_inserter(m_filteredThemes), admitted);
}

std::vector<AppTheme>::const_iterator ThemeBrowser::findFiltered(const std::optional<std::string>& id) const {
  return id ? std::ranges::find(m_filteredThemes, *id, &AppTheme::id) : m_filteredThemes.end();
}

void ThemeBrowser::setSearchText(const std::string& text) {
  update([&](State& state) { state.searchText = text; });
}

void ThemeBrowser::setSearchFocused(bool focused) {
  update([&](State& state) { state.searchFocused = focused; });
}

void ThemeBrowser::select(std::string id) {
  settings().setSelectedThemeID(id);
  update([&](State& state) {
    state.activeThemeID = std::move(id);
    state.searchFocused = false;
  });
}

void ThemeBrowser::moveSelection(int offset) {
  if (m_filteredThemes.empty())
    return;
  const bool isInSearch = m_state.searchFocused || !m_state.activeThemeID;
  const auto active = findFiltered(m_state.activeThemeID);
  if (!isInSearch && active == m_filteredThemes.end())
    return;
  const auto last = static_cast<std::ptrdiff_t>(m_filteredThemes.size()) - 1;
  const std::ptrdiff_t wanted =
      isInSearch ? (offset < 0 ? -1 : 0) : active - m_filteredThemes.begin() + offset;
  update([&](State& state) {
    state.searchFocused = wanted < 0;
    state.activeThemeID.reset();
    if (wanted >= 0)
      state.activeThemeID = m_filteredThemes[static_cast<std::size_t>(std::min(wanted, last))].id;
  });
}

bool ThemeBrowser::handleKey(std::string_view key) {
  if (key == "down" || key == "up") {
    moveSelection(key == "down" ? 1 : -1);
    return true;
  }
  if (key == "return")
    return applyActiveTheme();
  const bool leaves = key == "escape";
  const bool searches = key == "/" && !m_state.searchFocused;
  if (leaves || searches)
    update([&](State& state) {
      state.activeThemeID.reset();
      state.searchFocused = searches;
    });
  return leaves || searches;
}

bool ThemeBrowser::applyActiveTheme() {
  const auto active = findFiltered(m_state.activeThemeID);
  if (m_state.searchFocused || active == m_filteredThemes.end())
    return false;
  select(active->id);
  return true;
}

void ThemeBrowser::beginNewTheme() {
  AppTheme theme = settings().theme();
  theme.id = newCustomThemeID();
  theme.name = "My Theme";
  theme.category = customThemeCategory;
  theme.followsSystem = false;
  beginEditing(theme);
}

void ThemeBrowser::beginEditing(const AppTheme& theme) {
  update([&](State& state) { state.editingTheme = theme; });
}

void ThemeBrowser::saveEditedTheme(const AppTheme& theme) {
  settings().saveCustomTheme(theme);
  cancelEditing();
}

void ThemeBrowser::cancelEditing() {
  update([](State& state) { state.editingTheme.reset(); });
}

void ThemeBrowser::deleteTheme(const AppTheme& theme) {
  settings().deleteCustomTheme(theme);
}

void ThemeBrowser::importThemes() {
  if (m_state.showingImporter)
    return;
  update([](State& state) { state.showingImporter = true; });
  m_surroundings.fileChooser.chooseFileToOpen(
      "Import Themes", [browser = QPointer(this)](const Result<std::optional<std::filesystem::path>>& file) {
        if (browser)
          browser->importFrom(file);
      });
}

void ThemeBrowser::importFrom(const Result<std::optional<std::filesystem::path>>& file) {
  update([](State& state) { state.showingImporter = false; });
  const auto fail = [this](const Error& error) {
    update([&](State& state) { state.importError = error.message; });
  };
  if (!file)
    return fail(file.error());
  const std::optional<std::filesystem::path>& chosen = *file;
  if (!chosen)
    return;
  const auto document = ThemeConfigurationDocument::readFile(*chosen);
  if (!document)
    return fail(document.error());
  settings().importCustomThemes(document->themes);
}

void ThemeBrowser::exportThemes() {
  if (m_state.showingExporter || !canExport())
    return;
  update([](State& state) { state.showingExporter = true; });
  m_surroundings.fileChooser.chooseFileToSave(
      "Export Themes", "notlet-themes",
      [browser = QPointer(this)](const Result<std::optional<std::filesystem::path>>& file) {
        if (browser)
          browser->exportTo(file);
      });
}

void ThemeBrowser::exportTo(const Result<std::optional<std::filesystem::path>>& file) {
  update([](State& state) { state.showingExporter = false; });
  const auto fail = [this](const Error& error) {
    update([&](State& state) { state.exportError = error.message; });
  };
  if (!file)
    return fail(file.error());
  const std::optional<std::filesystem::path>& chosen = *file;
  if (!chosen)
    return;
  const ThemeConfigurationDocument document{settings().customThemes()};
  if (const Result<void> written = document.writeFile(*chosen); !written)
    fail(written.error());
}

void ThemeBrowser::dismissImportError() {
  update([](State& state) { state.importError.reset(); });
}

void ThemeBrowser::dismissExportError() {
  update([](State& state) { state.exportError.reset(); });
}

} // namespace notlet
