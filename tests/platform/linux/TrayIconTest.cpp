#include "platform/linux/TrayIcon.h"

#include <gmock/gmock.h>

#include <QImage>
#include <QPainter>
#include <cmath>

namespace notlet {

namespace {

/// The icon on a panel of one colour.
QImage onPanel(const QIcon& icon, int side, const QColor& panel) {
  QImage image(side, side, QImage::Format_RGB32);
  image.fill(panel);
  QPainter painter(&image);
  icon.paint(&painter, image.rect());
  return image;
}

double luminance(QRgb color) {
  const auto linear = [](int value) {
    const double part = value / 255.0;
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) + 0.0722 * linear(qBlue(color));
}

double contrast(QRgb a, QRgb b) {
  const auto [low, high] = std::minmax({luminance(a), luminance(b)});
  return (high + 0.05) / (low + 0.05);
}

} // namespace

TEST(TrayIconTest, ThreeDotsStandWhereTheyBelongAtEverySize) {
  for (const int side : {16, 18, 22, 24, 36, 48, 64}) {
    const QImage image = onPanel(trayIcon(true), side, Qt::black);
    const auto at = [&](double x, double y) {
      const double scale = side / 18.0;
      return qGray(image.pixel(static_cast<int>(x * scale), static_cast<int>(y * scale)));
    };
    // Centres of the dots, from the upper left, in units of the drawing.
    for (const auto& [x, y] : {std::pair(12.5, 4.5), std::pair(5.5, 11.5), std::pair(12.5, 11.5)})
      EXPECT_GT(at(x, y), 240) << side;
    for (const auto& [x, y] : {std::pair(5.5, 4.5), std::pair(9.0, 8.0), std::pair(1.0, 1.0)})
      EXPECT_LT(at(x, y), 15) << side;
  }
}

// A wrong guess about the panel must not hide the icon.
TEST(TrayIconTest, CanBeSeenOnAnyPanel) {
  for (const bool isPanelDark : {false, true}) {
    for (const QColor& panel : {QColor(Qt::black), QColor(0x30, 0x30, 0x30), QColor(0x80, 0x80, 0x80),
                                QColor(0xd0, 0xd0, 0xd0), QColor(Qt::white)}) {
      for (const int side : {16, 22, 32, 48}) {
        const QImage image = onPanel(trayIcon(isPanelDark), side, panel);
        double best = 1;
        for (int y = 0; y < side; ++y) {
          for (int x = 0; x < side; ++x)
            best = std::max(best, contrast(image.pixel(x, y), panel.rgb()));
        }
        EXPECT_GT(best, 3) << isPanelDark << " on " << panel.name().toStdString() << " at " << side;
      }
    }
  }
}

TEST(TrayIconTest, GivesPicturesOfManySizesOverTheBus) {
  const QIcon icon = trayIcon(true, QStringLiteral("org.notlet.Notlet-symbolic"));
  EXPECT_EQ(icon.name(), QStringLiteral("org.notlet.Notlet-symbolic"));
  EXPECT_EQ(trayIcon(true).name(), QString());
  EXPECT_TRUE(icon.availableSizes().contains(QSize(22, 22)));
  EXPECT_EQ(icon.pixmap(QSize(22, 22), 2.0).size(), QSize(44, 44));
}

} // namespace notlet
