#pragma once

#include <QObject>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/FileChooser.h"
#include "themes/AppSettings.h"

namespace notlet {

/// The rules of the theme screen: searching, walking with the keyboard, applying, and what is done with the
/// user's own themes. Lives as long as the screen does; what is chosen lives in the settings.
class ThemeBrowser : public QObject {
  Q_OBJECT

 public:
  struct State {
    /// As typed, UTF-8.
    std::string searchText;
    bool searchFocused = false;
    /// The row that the keyboard is on, which may be filtered away.
    std::optional<std::string> activeThemeID;
    /// The theme in the editor, which is open while there is one.
    std::optional<AppTheme> editingTheme;
    /// A file is being chosen.
    bool showingImporter = false;
    bool showingExporter = false;
    /// Messages of the failure alerts, which are up while they are set.
    std::optional<std::string> importError;
    std::optional<std::string> exportError;

    bool operator==(const State&) const = default;
  };

  /// What the screen lives on. Settings and chooser outlive the browser.
  struct Surroundings {
    AppSettings& settings;
    FileChooser& fileChooser;
    /// The user's language, such as "de_DE".
    std::string localeName;
  };

  explicit ThemeBrowser(Surroundings surroundings, QObject* parent = nullptr);

  [[nodiscard]] const State& state() const { return m_state; }
  /// The built-in themes and then the user's own, of those the ones whose name or category holds the search
  /// text.
  [[nodiscard]] const std::vector<AppTheme>& filteredThemes() const { return m_filteredThemes; }
  /// The categories of the filtered themes in the order in which they first appear.
  [[nodiscard]] std::vector<std::string> categories() const;
  [[nodiscard]] const std::string& selectedThemeID() const { return settings().selectedThemeID(); }
  [[nodiscard]] bool canExport() const { return !settings().customThemes().empty(); }
  /// Whether the theme is one that the user may edit and delete.
  [[nodiscard]] static bool isCustom(const AppTheme& theme) { return theme.category == customThemeCategory; }

  void setSearchText(const std::string& text);
  void setSearchFocused(bool focused);

  /// Brings the theme into force.
  void select(std::string id);
  /// Down is positive. Past the top is the search field; nothing is applied.
  void moveSelection(int offset);
  /// Takes the name of a key: "down", "up", "return", "escape" or the character typed. False when the key
  /// means nothing here and belongs to the focused control.
  bool handleKey(std::string_view key);

  /// Opens the editor with a theme in the colours of the one in force, which is stored when it is saved.
  void beginNewTheme();
  void beginEditing(const AppTheme& theme);
  /// Stores and selects the theme, and closes the editor.
  void saveEditedTheme(const AppTheme& theme);
  void cancelEditing();
  /// At once: nothing asks back.
  void deleteTheme(const AppTheme& theme);

  /// Lets the user choose a file and takes all of its themes, or none.
  void importThemes();
  /// Lets the user choose a place for a file of all custom themes.
  void exportThemes();
  void dismissImportError();
  void dismissExportError();

 Q_SIGNALS:
  /// The state differs, or what is computed from it and the settings.
  void changed();

 private:
  void update(const std::function<void(State&)>& change);
  void followSettings();
  void filterThemes();
  bool applyActiveTheme();
  void importFrom(const Result<std::optional<std::filesystem::path>>& file);
  void exportTo(const Result<std::optional<std::filesystem::path>>& file);
  [[nodiscard]] AppSettings& settings() const { return m_surroundings.settings; }
  [[nodiscard]] std::vector<AppTheme>::const_iterator
  findFiltered(const std::optional<std::string>& id) const;

  Surroundings m_surroundings;
  State m_state;
  /// Made when search text or themes change, not each time that a row is painted.
  std::vector<AppTheme> m_filteredThemes;
};

} // namespace notlet
