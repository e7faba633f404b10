#pragma once

#include <optional>
#include <string>
#include <vector>

#include "themes/ThemeBrowser.h"
#include "widgets/VirtualListView.h"

namespace notlet {

/// The name of a theme on one line, and no longer than a line can be.
[[nodiscard]] QString shownName(const AppTheme& theme);

/// The themes as rows of a list, those of each category below a heading. Each row previews its own theme.
class ThemeRows final : public VirtualListRows {
 public:
  /// The palette is that of the widget. There are no rows before refresh().
  ThemeRows(const ThemeBrowser& browser, const QWidget& widget);

  /// Takes over the themes of the browser; whether there are other rows now.
  bool refresh();
  /// Null for a heading.
  [[nodiscard]] const AppTheme* themeAt(std::size_t row) const;
  [[nodiscard]] std::optional<std::size_t> rowOf(const std::string& themeID) const;

  [[nodiscard]] std::size_t count() const override { return m_rows.size(); }
  [[nodiscard]] int height(std::size_t row, int width) override;
  void paint(QPainter& painter, const QRect& rect, std::size_t row, const PaintState& state) override;
  [[nodiscard]] QString accessibleText(std::size_t row) const override;

 private:
  struct Row {
    /// Empty for a theme.
    std::string heading;
    AppTheme theme;
    bool isFirst = false;
    bool isLast = false;

    bool operator==(const Row&) const = default;
  };

  [[nodiscard]] bool isSelected(const Row& row) const;
  void paintHeading(QPainter& painter, const QRect& rect, const Row& row) const;
  void paintGround(QPainter& painter, const QRect& card, const Row& row, const PaintState& state) const;
  void paintTexts(QPainter& painter, const QRect& area, const AppTheme& theme) const;

  const ThemeBrowser& m_browser;
  const QWidget& m_widget;
  std::vector<Row> m_rows;
};

} // namespace notlet
