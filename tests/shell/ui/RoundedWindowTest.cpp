#include "shell/ui/RoundedWindow.h"

#include <gtest/gtest.h>

#include <QTest>
#include <QWindow>

#include "support/FakeWindowSystem.h"
#include "support/MemoryDefaults.h"
#include "themes/AppThemeCatalog.h"
#include "widgets/Motion.h"

namespace notlet {

namespace {

class RoundedWindowTest : public testing::Test {
 protected:
  RoundedWindowTest() {
    window.setFixedSize(380, 260);
    settings.setSelectedThemeID("dracula");
  }
  ~RoundedWindowTest() override { Motion::setReduced(false); }

  [[nodiscard]] QImage picture() {
    QImage image(window.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    window.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
  }
  /// Whether a window pixel is there for the desktop.
  [[nodiscard]] bool isCutIn(int x, int y) const { return window.mask().contains(QPoint(x, y)); }

  MemoryDefaults defaults;
  AppSettings settings{defaults};
  FakeWindowSystem windowSystem;
  QWidget* content = new QWidget;
  RoundedWindow window{settings, windowSystem, content, {}};
};

// On the diagonal a corner of this radius ends between the eighth and the ninth pixel.
constexpr int outside = 7;
constexpr int inside = 9;

} // namespace

TEST_F(RoundedWindowTest, WithoutACompositorItIsCutToItsShapeAndFilled) {
  windowSystem.setCompositor(false);
  window.show();
  for (const auto& [x, y] : {std::pair(0, 0), {379, 0}, {0, 259}, {379, 259}, {outside, outside}})
    EXPECT_FALSE(isCutIn(x, y)) << x << ' ' << y;
  for (const auto& [x, y] : {std::pair(inside, inside), {379 - inside, 259 - inside}, {28, 0}, {0, 130}})
    EXPECT_TRUE(isCutIn(x, y)) << x << ' ' << y;
}

TEST_F(RoundedWindowTest, ACompositorThatComesOrGoesChangesTheEdges) {
  window.show();
  const auto smoothEdge = [this] { return isCutIn(outside, outside); };
  EXPECT_TRUE(smoothEdge());
  windowSystem.setCompositor(false);
  EXPECT_FALSE(smoothEdge());
  windowSystem.setCompositor(true);
  EXPECT_TRUE(smoothEdge());
}

// A surface without an alpha channel cannot be smooth, one with it takes longer to paint.
TEST_F(RoundedWindowTest, ItsSurfaceFollowsTheCompositorWhileItIsHidden) {
  const auto hasAlpha = [this] { return window.windowHandle()->requestedFormat().hasAlpha(); };
  windowSystem.setCompositor(false);
  window.show();
  EXPECT_FALSE(hasAlpha());
  windowSystem.setCompositor(true);
  EXPECT_FALSE(hasAlpha()) << "nothing flickers while it is up";
  EXPECT_FALSE(isCutIn(outside, outside));
  window.hide();
  EXPECT_TRUE(QTest::qWaitFor(hasAlpha));
  window.show();
  EXPECT_TRUE(isCutIn(outside, outside));
  window.hide();
  windowSystem.setCompositor(false);
  EXPECT_FALSE(hasAlpha());
  EXPECT_FALSE(isCutIn(outside, outside));
}

TEST_F(RoundedWindowTest, OneThatStaysUpIsSmoothAsSoonAsThereIsACompositor) {
  windowSystem.setCompositor(false);
  RoundedWindow bubble(settings, windowSystem, new QWidget, {.staysUp = true});
  bubble.setFixedSize(380, 260);
  bubble.show();
  windowSystem.setCompositor(true);
  EXPECT_TRUE(bubble.mask().contains(QPoint(outside, outside)));
  EXPECT_TRUE(bubble.windowHandle()->requestedFormat().hasAlpha());
}

// The body is what everybody else means by the window.
TEST_F(RoundedWindowTest, AShadowComesAndGoesAroundABodyThatStays) {
  windowSystem.wantsShadows = true;
  RoundedWindow shaded(settings, windowSystem, new QWidget, {});
  shaded.setBodySize({380, 260});
  shaded.moveBody({100, 100});
  shaded.show();
  for (const bool compositor : {true, false, true}) {
    windowSystem.setCompositor(compositor);
    EXPECT_EQ(shaded.body(), QRect(100, 100, 380, 260));
    const QPoint corner = QPoint(100, 100) - shaded.pos();
    const auto& [shadow, body] = windowSystem.shadowAndBody;
    EXPECT_EQ(shadow.isNull(), !compositor);
    EXPECT_EQ(body.contains(corner + QPoint(190, 259)), compositor);
    EXPECT_FALSE(body.contains(corner + QPoint(190, 260)) || body.contains(corner + QPoint(2, 2)));
    QImage image(shaded.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    shaded.render(&image, {}, {}, QWidget::DrawChildren);
    const auto opacity = [&](int y) { return image.pixelColor(corner + QPoint(190, y)).alpha(); };
    EXPECT_EQ(opacity(259), 255);
    EXPECT_TRUE(!compositor || (opacity(261) > opacity(265) && opacity(265) > 0)) << "it fades out";
  }
}

TEST_F(RoundedWindowTest, PaintsTheThemesGroundInItsShapeOnly) {
  window.show();
  for (const char* id : {"dracula", "paper"}) {
    settings.setSelectedThemeID(id);
    const QImage image = picture();
    const QColor ground = colorFromHex(AppThemeCatalog::themeWithID(id).backgroundHex);
    EXPECT_EQ(image.pixelColor(190, 130), ground) << id;
    EXPECT_NE(image.pixelColor(190, 0), ground) << "the line around it";
    EXPECT_EQ(image.pixelColor(190, 1), ground) << id;
  }
}

// Some window managers know no window as small as the bubble.
TEST_F(RoundedWindowTest, KeepsTheSizeOfItsContentInALargerWindow) {
  auto* small = new QWidget;
  small->setFixedSize(64, 64);
  RoundedWindow larger(settings, windowSystem, small, {.radius = 32});
  larger.resize(100, 80);
  larger.show();
  ASSERT_EQ(larger.size(), QSize(100, 80));
  EXPECT_EQ(small->mapTo(&larger, QPoint()), QPoint(0, 8));
  for (const bool compositor : {true, false}) {
    windowSystem.setCompositor(compositor);
    EXPECT_EQ(larger.mask().boundingRect(), QRect(0, 8, 64, 64)) << compositor;
  }
}

TEST_F(RoundedWindowTest, OpensFromAPlaceToItsWholeShape) {
  window.move(100, 100);
  window.show();
  window.openFrom({100 + 316, 100 + 196, 64, 64});
  EXPECT_FALSE(isCutIn(190, 130));
  EXPECT_TRUE(isCutIn(316 + 32, 196 + 32));
  EXPECT_TRUE(QTest::qWaitFor([this] { return isCutIn(190, 1) && isCutIn(1, 130); }));
}

TEST_F(RoundedWindowTest, OpensAtOnceWhenTheDesktopAsksForNoAnimationOrThePlaceIsElsewhere) {
  window.move(100, 100);
  window.show();
  window.openFrom({2000, 2000, 64, 64});
  EXPECT_TRUE(isCutIn(190, 130));
  Motion::setReduced(true);
  window.openFrom({100, 100, 64, 64});
  EXPECT_TRUE(isCutIn(190, 130));
}

} // namespace notlet
