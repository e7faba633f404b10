#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <array>
#include <functional>

#include "themes/CustomThemeDraft.h"
#include "themes/ui/ColorWell.h"
#include "themes/ui/ThemePreview.h"
#include "widgets/TextButton.h"

class QVBoxLayout;

namespace notlet {

/// The sheet in which a theme of the user's own is named and coloured. Show it with open(); it deletes itself
/// when closed.
class CustomThemeEditor : public QDialog {
  Q_OBJECT

 public:
  /// `onSave` gets the theme as it is to be stored, when the sheet has closed.
  CustomThemeEditor(const AppTheme& theme, std::function<void(const AppTheme&)> onSave,
                    QWidget* parent = nullptr);

  [[nodiscard]] CustomThemeDraft& draft() { return m_draft; }

 private:
  struct ColorRow {
    QLineEdit* code;
    ColorWell* well;
  };

  void layOut();
  void fitToScreen(int wholeHeight);
  [[nodiscard]] QWidget* makeForm(int rightMargin);
  [[nodiscard]] QWidget* makeThemeSection();
  [[nodiscard]] QWidget* makeColorSection();
  [[nodiscard]] QWidget* makeColorRow(ThemeColor color);
  [[nodiscard]] QWidget* makePreviewSection();
  [[nodiscard]] QLayout* makeButtons();
  void render();
  void renderHints();
  [[nodiscard]] QString contrastHint() const;
  void pickColor(ThemeColor color);
  void save();

  CustomThemeDraft m_draft;
  std::function<void(const AppTheme&)> m_onSave;
  QLineEdit* m_name;
  QCheckBox* m_dark;
  std::array<ColorRow, allThemeColors.size()> m_colors{};
  QLabel* m_codeHint;
  ThemePreview* m_preview;
  QLabel* m_contrastHint;
  TextButton* m_save;
};

} // namespace notlet
