#pragma once

#include <QObject>
#include <string>
#include <vector>

#include "platform/Defaults.h"
#include "themes/AppTheme.h"

namespace notlet {

/// The selected theme and the user's own themes, kept in the defaults at every change.
///
/// A change that cannot be written stays in force, is told by `warning()` and goes to the disk with the next
/// one that can, or at the end.
class AppSettings : public QObject {
  Q_OBJECT

 public:
  /// The keys under which the settings are kept.
  static constexpr std::string_view selectedThemeKey = "selectedThemeID";
  static constexpr std::string_view customThemesKey = "customThemes";
  static constexpr std::string_view versionKey = "themeConfigurationVersion";

  /// The defaults must outlive this object.
  explicit AppSettings(Defaults& defaults, QObject* parent = nullptr);
  ~AppSettings() override;

  /// The theme in force: the first custom theme with the selected identifier, else the built-in one, else
  /// "system".
  [[nodiscard]] const AppTheme& theme() const;
  [[nodiscard]] const std::string& selectedThemeID() const { return m_selectedThemeID; }
  /// In the order in which they were added.
  [[nodiscard]] const std::vector<AppTheme>& customThemes() const { return m_customThemes; }

  void setSelectedThemeID(std::string_view id);
  /// Adds the theme, or replaces the one with its identifier in place, and selects it. A theme with the
  /// identifier of a built-in one is not taken.
  void saveCustomTheme(const AppTheme& theme);
  /// Removes the theme with this one's identifier. When it was selected, "system" is selected.
  void deleteCustomTheme(const AppTheme& theme);
  /// Adds the themes, or replaces those whose "custom-" identifier is already there; all others get a new
  /// identifier. The selection stays.
  void importCustomThemes(const std::vector<AppTheme>& themes);

  /// Why the last change is not on disk, in whole sentences (UTF-8); empty when it is, or the user has read
  /// it.
  [[nodiscard]] const std::string& warning() const { return m_warning; }
  void dismissWarning() { setWarning({}); }
  /// Writes what could not be written before.
  void tryAgain();

 Q_SIGNALS:
  /// The selection or the list of custom themes differs from before.
  void changed();
  /// The theme in force differs from before. Comes before changed().
  void themeChanged();
  void warningChanged();

 private:
  struct Before;

  void readCustomThemes();
  void persistSelection();
  void persistCustomThemes();
  void keepUnreadableThemes();
  void noteWritten(const Result<void>& written);
  void setWarning(std::string warning);
  void addOrReplace(const AppTheme& theme);
  [[nodiscard]] Before before() const;
  void announce(const Before& old);

  Defaults& m_defaults;
  std::string m_selectedThemeID;
  std::vector<AppTheme> m_customThemes;
  /// Stored bytes that are no list of themes, not yet kept elsewhere.
  std::string m_unreadableThemes;
  bool m_isWritten = true;
  std::string m_warning;
};

} // namespace notlet
