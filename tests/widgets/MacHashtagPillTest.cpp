#include "widgets/MacHashtagPill.h"

#include <QPainter>
#include <gmock/gmock.h>

#include "themes/AppThemeCatalog.h"
#include "widgets/ThemePalette.h"

namespace notlet {
namespace {

QPalette paletteOf(std::string_view id) {
  return themePalette(AppThemeCatalog::themeWithID(id), QPalette());
}

/// The colour of the capsule, a few pixels in from its left end where there is no text.
QColor fill(const PillContent& content, const QPalette& palette) {
  QImage image(PillPainter::size(content), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  PillPainter::paint(painter, image.rect(), content, palette);
  return image.pixelColor(content.isLarge ? 8 : 5, image.height() / 2);
}

int pixelsOf(const QColor& color, const PillContent& content, const QPalette& palette) {
  QImage image(PillPainter::size(content), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  PillPainter::paint(painter, image.rect(), content, palette);
  int count = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      count += image.pixelColor(x, y) == color ? 1 : 0;
  return count;
}

TEST(MacHashtagPillTest, ATagKeepsOneOfTheTwoAccents) {
  const QPalette palette = paletteOf("dracula");
  const QColor accent(0xBD, 0x93, 0xF9);
  const QColor alternate(0xFF, 0x79, 0xC6);
  // The hash of "a" is even, that of "b" odd.
  EXPECT_EQ(PillPainter::tagColor(QStringLiteral("a"), palette), accent);
  EXPECT_EQ(PillPainter::tagColor(QStringLiteral("b"), palette), alternate);
  EXPECT_EQ(PillPainter::tagColor(QStringLiteral("\u00c4pfel"), palette),
            PillPainter::tagColor(QStringLiteral("\u00e4PFEL"), palette));
}

TEST(MacHashtagPillTest, OnlyAnUnselectedFilterGivesUpTheTagColour) {
  const QPalette palette = paletteOf("dracula");
  const QString tag = QStringLiteral("work");
  for (const bool isLarge : {false, true}) {
    EXPECT_EQ(fill({tag, std::nullopt, isLarge}, palette), PillPainter::tagColor(tag, palette));
    EXPECT_EQ(fill({tag, true, isLarge}, palette), PillPainter::tagColor(tag, palette));
    EXPECT_EQ(fill({tag, false, isLarge}, palette), palette.color(ThemeRole::surface));
  }
}

TEST(MacHashtagPillTest, TextIsBlackOnLightAccentsAndWhiteOnDarkOnes) {
  const QString tag = QStringLiteral("work");
  EXPECT_GT(pixelsOf(Qt::black, {tag, std::nullopt, true}, paletteOf("system")), 10);
  // Paper's accents are near black.
  EXPECT_GT(pixelsOf(Qt::white, {QStringLiteral("home"), std::nullopt, true}, paletteOf("paper")), 10);
  EXPECT_GT(pixelsOf(QColor(0xBF, 0xBF, 0xC7), {tag, false, true}, paletteOf("dracula")), 10);
}

TEST(MacHashtagPillTest, OnlyASelectedFilterMakesRoomForACheckmark) {
  const QString tag = QStringLiteral("work");
  for (const bool isLarge : {false, true}) {
    const int plain = PillPainter::size({tag, std::nullopt, isLarge}).width();
    EXPECT_EQ(PillPainter::size({tag, false, isLarge}).width(), plain);
    EXPECT_GT(PillPainter::size({tag, true, isLarge}).width(), plain + 4);
  }
  EXPECT_GT(PillPainter::size({tag, std::nullopt, true}).height(), PillPainter::size({tag}).height());
}

TEST(MacHashtagPillTest, ATagThatDoesNotFitStaysInsideItsRectangle) {
  QImage image(200, 40, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  const PillContent content{QString(300, QLatin1Char('w')), true, true};
  PillPainter::paint(painter, QRect(10, 5, 90, 30), content, paletteOf("ink"));
  for (int y = 0; y < image.height(); ++y)
    for (const int x : {0, 5, 9, 100, 105, 150, 199})
      EXPECT_EQ(image.pixelColor(x, y).alpha(), 0) << x << ", " << y;
}

TEST(MacHashtagPillTest, NewContentAsksForANewSize) {
  MacHashtagPill pill({QStringLiteral("a")});
  const QSize before = pill.sizeHint();
  pill.setContent({QStringLiteral("a-longer-tag")});
  EXPECT_GT(pill.sizeHint().width(), before.width());
}

} // namespace
} // namespace notlet
