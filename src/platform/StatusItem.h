#pragma once

#include <QObject>
#include <QRect>
#include <optional>

namespace notlet {

/// The program's icon in the desktop's tray, with a menu. It comes and goes with the tray.
class StatusItem : public QObject {
  Q_OBJECT

 public:
  [[nodiscard]] virtual bool isShown() const = 0;
  /// Where the icon is, in Qt's screen coordinates (logical pixels, y downward); nothing when the tray does
  /// not tell.
  [[nodiscard]] virtual std::optional<QRect> area() const = 0;

 Q_SIGNALS:
  void shownChanged();
  /// The icon was clicked; a double click may come as two.
  void clicked();
  /// Choices of the menu.
  void quickNotletChosen();
  void openChosen();
  void settingsChosen();
  void quitChosen();
};

} // namespace notlet
