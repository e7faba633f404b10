#pragma once

#include <QIcon>
#include <QWidget>

namespace notlet {

/// Whether the icon is drawn white, for a dark desktop, or black, for a light one.
enum class AppIconTone { white, black };

/// The program's three dots on nothing, `side` pixels square.
[[nodiscard]] QPixmap appIconPixmap(int side, AppIconTone tone);
/// The three dots as a window icon, in the usual sizes.
[[nodiscard]] QIcon appIcon(AppIconTone tone);

/// The icon as an image in a window: the dots on a rounded tile, in the colours of the theme.
class AppIconView : public QWidget {
  Q_OBJECT

 public:
  AppIconView(int side, int cornerRadius, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int m_cornerRadius;
};

} // namespace notlet
