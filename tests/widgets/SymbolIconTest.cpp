#include "widgets/SymbolIcon.h"

#include <QPainter>
#include <gmock/gmock.h>

#include "widgets/AppIcon.h"

namespace notlet {
namespace {

constexpr int symbolCount = static_cast<int>(Symbol::xmarkCircleFill) + 1;

double inkShare(const QImage& image) {
  int inked = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      inked += image.pixelColor(x, y).alpha() > 127 ? 1 : 0;
  return static_cast<double>(inked) / (image.width() * image.height());
}

TEST(SymbolIconTest, EverySymbolIsDrawnInsideItsSquareInTheGivenColour) {
  for (int index = 0; index < symbolCount; ++index) {
    SCOPED_TRACE(index);
    const QImage image = symbolPixmap(static_cast<Symbol>(index), 48, QColor(200, 30, 40), 1).toImage();
    EXPECT_GT(inkShare(image), 0.05) << "a missing or empty drawing";
    EXPECT_LT(inkShare(image), 0.75);
    for (int at = 0; at < 48; ++at)
      EXPECT_EQ(image.pixelColor(at, 0).alpha() + image.pixelColor(0, at).alpha() +
                    image.pixelColor(at, 47).alpha() + image.pixelColor(47, at).alpha(),
                0)
          << "touches the edge";
    for (int y = 0; y < 48; ++y)
      for (int x = 0; x < 48; ++x)
        if (image.pixelColor(x, y).alpha() == 255) {
          ASSERT_EQ(image.pixelColor(x, y), QColor(200, 30, 40));
        }
  }
}

TEST(SymbolIconTest, NoTwoSymbolsLookAlike) {
  std::vector<QImage> images;
  for (int index = 0; index < symbolCount; ++index) {
    images.push_back(symbolPixmap(static_cast<Symbol>(index), 24, Qt::black, 1).toImage());
    for (int other = 0; other < index; ++other)
      EXPECT_NE(images[static_cast<std::size_t>(other)], images.back()) << other << " and " << index;
  }
}

TEST(SymbolIconTest, HighResolutionScreensGetMorePixels) {
  for (const qreal ratio : {1.0, 1.25, 1.5, 2.0}) {
    const QPixmap pixmap = symbolPixmap(Symbol::mic, 20, Qt::black, ratio);
    EXPECT_EQ(pixmap.width(), qRound(20 * ratio));
    EXPECT_EQ(pixmap.devicePixelRatio(), ratio);
  }
}

TEST(SymbolIconTest, ANewPaletteTintsTheSymbolAnew) {
  SymbolIcon icon(Symbol::xmarkCircleFill, 24, QPalette::BrightText);
  for (const QColor& color : {QColor(10, 200, 30), QColor(240, 10, 20)}) {
    QPalette palette;
    palette.setColor(QPalette::BrightText, color);
    icon.setPalette(palette);
    EXPECT_EQ(icon.grab().toImage().pixelColor(12, 4), color);
  }
}

TEST(AppIconTest, TheThreeDotsAreWhereTheyBelong) {
  const QImage image = appIconPixmap(512, AppIconTone::black).toImage();
  // Centres, from the upper left.
  for (const QPoint center : {QPoint(347, 164), QPoint(165, 346), QPoint(347, 346)}) {
    EXPECT_EQ(image.pixelColor(center), QColor(Qt::black));
    EXPECT_EQ(image.pixelColor(center - QPoint(65, 0)).alpha(), 255);
    EXPECT_EQ(image.pixelColor(center - QPoint(71, 0)).alpha(), 0);
    EXPECT_EQ(image.pixelColor(center + QPoint(0, 71)).alpha(), 0);
  }
  EXPECT_EQ(image.pixelColor(165, 164).alpha(), 0) << "no fourth dot";
  EXPECT_NEAR(inkShare(image), 3 * 3.14159 * 67.5 * 67.5 / (512.0 * 512.0), 0.002);
  EXPECT_EQ(appIconPixmap(64, AppIconTone::white).toImage().pixelColor(43, 20), QColor(Qt::white));
  EXPECT_FALSE(appIcon(AppIconTone::white).availableSizes().isEmpty());
}

} // namespace
} // namespace notlet
