#include "platform/linux/TrayIcon.h"

#include <QIconEngine>
#include <QPainter>
#include <array>

namespace notlet {

namespace {

class DotsEngine final : public QIconEngine {
 public:
  DotsEngine(bool isPanelDark, const QString& name) : m_isPanelDark(isPanelDark), m_name(name) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    const int side = std::min(rect.width(), rect.height());
    painter->translate(rect.center() - QPoint((side - 1) / 2, (side - 1) / 2));
    painter->scale(side / grid, side / grid);
    QColor rim = m_isPanelDark ? Qt::black : Qt::white;
    rim.setAlphaF(rimOpacity);
    paintDots(*painter, rim, rimWidth);
    paintDots(*painter, m_isPanelDark ? Qt::white : Qt::black, 0);
    painter->restore();
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, pixmap.rect(), mode, state);
    return pixmap;
  }

  /// Those that desktops show at 100 to 200 per cent; pictures of all of them travel over the bus.
  QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
    QList<QSize> sizes;
    for (const int side : {16, 18, 22, 24, 32, 36, 44, 48})
      sizes.append(QSize(side, side));
    return sizes;
  }

  QString iconName() override { return m_name; }
  [[nodiscard]] QIconEngine* clone() const override { return new DotsEngine(*this); }

 private:
  /// Units of the drawing.
  static constexpr double grid = 18;
  static constexpr double diameter = 5;
  static constexpr double rimWidth = 0.8;
  static constexpr float rimOpacity = 0.75F;

  static void paintDots(QPainter& painter, const QColor& color, double extra) {
    // Lower left corners, measured from the lower left of the icon.
    constexpr std::array corners = {std::pair(10, 11), std::pair(3, 4), std::pair(10, 4)};
    painter.setBrush(color);
    for (const auto& [left, bottom] : corners)
      painter.drawEllipse(
          QRectF(left, grid - bottom - diameter, diameter, diameter).adjusted(-extra, -extra, extra, extra));
  }

  bool m_isPanelDark;
  QString m_name;
};

} // namespace

QIcon trayIcon(bool isPanelDark, const QString& name) {
  return QIcon(new DotsEngine(isPanelDark, name));
}

} // namespace notlet
