#include <gmock/gmock.h>

#include <QApplication>
#include <QProcess>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

#include "platform/linux/QtScreens.h"
#include "support/TemporaryDirectory.h"
#include "support/VirtualDisplay.h"

namespace notlet {

// How tests print it.
void PrintTo(const ScreenArea& area, std::ostream* out) {
  const QRectF& frame = area.frame;
  *out << area.displayID << " at " << frame.x() << ',' << frame.y() << " of " << frame.width() << 'x'
       << frame.height();
}

namespace {

const char* const first = "DUMMY0";
const char* const second = "DUMMY1";

class X11ScreensTest : public testing::Test {
 protected:
  void SetUp() override { plugIn(); }

  /// One monitor of 1280 × 720 pixels and, to the right of it, one of 1024 × 768.
  void plugIn() {
    arrange({"--output", first, "--mode", "1280x720", "--pos", "0x0", "--primary"});
    arrange({"--output", second, "--mode", "1024x768", "--pos", "1280x0"});
    const auto arrived = [this] {
      const auto all = screens.all();
      return all.size() == 2 && all[0].frame == QRectF(0, 0, 1280, 720) && all[1].frame.x() == 1280;
    };
    ASSERT_TRUE(QTest::qWaitFor(arrived)) << testing::PrintToString(screens.all());
  }

  // In a space that has room for all arrangements, no monitor has to be off in between.
  static void arrange(const std::vector<std::string>& arguments) {
    QStringList words{QStringLiteral("--fb"), QStringLiteral("4096x2160")};
    for (const std::string& argument : arguments)
      words.append(QString::fromStdString(argument));
    ASSERT_EQ(QProcess::execute(QStringLiteral("xrandr"), words), 0) << qPrintable(words.join(u' '));
  }

  /// What is said of the screens after they were arranged anew.
  std::vector<ScreenArea> afterArranging(const std::vector<std::string>& arguments,
                                         const std::vector<QRectF>& frames) {
    arrange(arguments);
    const auto arrived = [&] {
      std::vector<QRectF> now;
      for (const ScreenArea& area : screens.all())
        now.push_back(area.frame);
      return now == frames;
    };
    EXPECT_TRUE(QTest::qWaitFor(arrived))
        << arguments[1] << arguments[2] << testing::PrintToString(screens.all());
    EXPECT_TRUE(QTest::qWaitFor([this] { return lastTold == screens.all(); }));
    return screens.all();
  }

  QtScreens screens;
  /// The screens when they were last said to have changed.
  std::optional<std::vector<ScreenArea>> lastTold;
  QMetaObject::Connection told =
      QObject::connect(&screens, &Screens::changed, [this] { lastTold = screens.all(); });
};

} // namespace

TEST_F(X11ScreensTest, AreMeasuredFromTheLowerLeftCornerOfTheMainOne) {
  const std::vector<ScreenArea> before = screens.all();
  ASSERT_EQ(before.size(), 2U);
  EXPECT_EQ(before[0].frame, QRectF(0, 0, 1280, 720));
  EXPECT_EQ(before[1].frame, QRectF(1280, -48, 1024, 768));
  EXPECT_EQ(screens.main(), before[0]);
  EXPECT_NE(before[0].displayID, before[1].displayID);

  afterArranging({"--output", second, "--above", first}, {{0, 0, 1280, 720}, {0, 720, 1024, 768}});
  afterArranging({"--output", second, "--left-of", first}, {{0, 0, 1280, 720}, {-1024, -48, 1024, 768}});
  EXPECT_EQ(screens.toQt({-1024, -48, 1024, 768}), QRect(0, 0, 1024, 768));
  const auto after =
      afterArranging({"--output", second, "--primary"}, {{0, 0, 1024, 768}, {1024, 48, 1280, 720}});
  EXPECT_EQ(after[0].displayID, before[1].displayID);
  EXPECT_EQ(after[1].displayID, before[0].displayID);
}

TEST_F(X11ScreensTest, ComeAndGoUntilNoneIsLeft) {
  const std::vector<ScreenArea> before = screens.all();
  afterArranging({"--output", second, "--off"}, {{0, 0, 1280, 720}});
  const auto none = afterArranging({"--output", first, "--off"}, {});
  EXPECT_TRUE(none.empty());
  EXPECT_EQ(screens.main(), std::nullopt);
  EXPECT_EQ(screens.toQt({5, 10, 64, 64}), QRect(5, -74, 64, 64));
  EXPECT_EQ(screens.fromQt({5, -74, 64, 64}), QRectF(5, 10, 64, 64));
  plugIn();
  EXPECT_EQ(screens.all(), before);
}

// What moves windows must do so once, and not before Qt has moved them itself.
TEST_F(X11ScreensTest, TellOnceOfOneChangeAfterAllElse) {
  QTest::qWait(0);
  const QSignalSpy changes(&screens, &Screens::changed);
  QStringList order;
  const auto note = [&order](const char* what) {
    return [&order, what] { order.append(QString::fromUtf8(what)); };
  };
  QScreen* screen = QGuiApplication::primaryScreen();
  QObject::connect(&screens, &Screens::changed, &screens, note("changed"));
  QObject::connect(screen, &QScreen::geometryChanged, &screens, note("geometry"));
  QObject::connect(screen, &QScreen::availableGeometryChanged, &screens, note("available"));
  QObject::connect(screen, &QScreen::physicalDotsPerInchChanged, &screens, note("density"));
  Q_EMIT screen->geometryChanged({});
  Q_EMIT screen->availableGeometryChanged({});
  Q_EMIT screen->physicalDotsPerInchChanged(0);
  EXPECT_EQ(changes.count(), 0);
  QTest::qWait(0);
  EXPECT_EQ(order.join(u' '), QStringLiteral("geometry available density changed"));
  QTest::qWait(0);
  EXPECT_EQ(changes.count(), 1);
}

} // namespace notlet

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  const notlet::TemporaryDirectory directory;
  notlet::VirtualDisplay display({"Xorg", "-config", NOTLET_TWO_MONITORS, "-logfile",
                                  (directory.path() / "log").string(), "-noreset", "-nolisten", "tcp",
                                  "-novtswitch", "-sharevts"});
  qputenv("DISPLAY", QByteArray::fromStdString(display.name()));
  qputenv("QT_QPA_PLATFORM", "xcb");
  // The second output knows no modes by itself, and counts as connected when it has one and is asked.
  const QString second = QString::fromUtf8(notlet::second);
  const QString mode = QStringLiteral("1024x768");
  const QString xrandr = QStringLiteral("xrandr");
  QProcess::execute(xrandr, {QStringLiteral("--addmode"), second, mode});
  QProcess::execute(xrandr, {QStringLiteral("--output"), second, QStringLiteral("--mode"), mode});
  QProcess::execute(xrandr, {QStringLiteral("--listmonitors")});
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
