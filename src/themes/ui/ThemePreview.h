#pragma once

#include <QWidget>

#include "themes/AppTheme.h"

namespace notlet {

/// A card with texts and chips in the colours of a theme, whatever theme is in force.
class ThemePreview : public QWidget {
  Q_OBJECT

 public:
  explicit ThemePreview(QWidget* parent = nullptr);

  void setTheme(const AppTheme& theme);
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  AppTheme m_theme;
};

} // namespace notlet
