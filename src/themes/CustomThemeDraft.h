#pragma once

#include <QObject>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "core/Rgb.h"
#include "themes/AppTheme.h"

namespace notlet {

/// The colours of a theme that its maker chooses, in the order in which they are offered.
enum class ThemeColor { background, surface, primaryText, secondaryText, accent, alternateAccent };
inline constexpr std::array allThemeColors{ThemeColor::background,  ThemeColor::surface,
                                           ThemeColor::primaryText, ThemeColor::secondaryText,
                                           ThemeColor::accent,      ThemeColor::alternateAccent};

/// The field of a theme that holds the colour.
[[nodiscard]] std::string& codeOf(AppTheme& theme, ThemeColor color);
[[nodiscard]] const std::string& codeOf(const AppTheme& theme, ThemeColor color);

/// A theme of the user's own while it is being made or changed.
class CustomThemeDraft : public QObject {
  Q_OBJECT

 public:
  struct State {
    AppTheme theme;
    /// Colour codes as typed, by ThemeColor. One that is none leaves the colour of the theme as it was.
    std::array<std::string, allThemeColors.size()> typedCodes;

    bool operator==(const State&) const = default;
  };
  /// A text colour that is hard to read on the theme's background.
  struct FaintText {
    ThemeColor color;
    /// From 1 to 21.
    double contrast;
  };

  /// Less contrast than this makes a text hard to read.
  static constexpr double legibleContrast = 4.5;

  explicit CustomThemeDraft(const AppTheme& theme, QObject* parent = nullptr);

  [[nodiscard]] const State& state() const { return m_state; }
  /// What is drawn for the colour.
  [[nodiscard]] Rgb color(ThemeColor color) const { return Rgb::fromHex(codeOf(m_state.theme, color)); }
  [[nodiscard]] const std::string& typedCode(ThemeColor color) const {
    return m_state.typedCodes.at(static_cast<std::size_t>(color));
  }
  /// Whether what was typed is a colour code: three or six hexadecimal digits, with or without "#".
  [[nodiscard]] bool isCode(ThemeColor color) const;
  [[nodiscard]] std::vector<FaintText> faintTexts() const;
  /// Whether there is a name, and every code that was typed is one.
  [[nodiscard]] bool canSave() const;
  /// The theme as it is stored: with its name trimmed, in the category of custom themes, with colours of its
  /// own.
  [[nodiscard]] AppTheme themeToSave() const;

  void setName(const std::string& name);
  void setDark(bool isDark);
  void setColor(ThemeColor color, Rgb value);
  void typeCode(ThemeColor color, const std::string& text);

 Q_SIGNALS:
  /// The state differs.
  void changed();

 private:
  void update(State state);

  State m_state;
};

} // namespace notlet
