#include "shell/ui/FloatingPanelWindows.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <QWindow>

#include "support/FakeScreens.h"
#include "support/FakeWindowSystem.h"
#include "support/MemoryDefaults.h"

namespace notlet {

namespace {

using Content = FloatingPanel::Content;

const QRectF bubbleFrame(1352, 747, 64, 64);
const QRectF captureFrame(1036, 607, 380, 260);

class FloatingPanelWindowsTest : public testing::Test {
 protected:
  FloatingPanelWindowsTest() {
    bubble->setFixedSize(64, 64);
    capture->setFixedSize(380, 260);
    auto* layout = new QVBoxLayout(capture);
    layout->addWidget(field);
    other.show();
    other.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&other));
  }

  void showBubble() {
    panel.setContent(Content::bubble);
    panel.setFrame(bubbleFrame, false);
    panel.orderFront();
  }
  void expand() {
    panel.setContent(Content::capture);
    panel.setFrame(captureFrame, true);
    panel.makeKeyAndOrderFront();
    field->setFocus();
  }

  MemoryDefaults defaults;
  AppSettings settings{defaults};
  FakeWindowSystem windowSystem;
  FakeScreens screens;
  int bubblesMade = 0;
  int capturesMade = 0;
  QWidget* bubble = new QWidget;
  QWidget* capture = new QWidget;
  QLineEdit* field = new QLineEdit;
  QLineEdit other;
  FloatingPanelWindows panel{{settings, windowSystem, screens},
                             {[this] {
                                ++bubblesMade;
                                return bubble;
                              },
                              [this] {
                                ++capturesMade;
                                return capture;
                              }}};
};

} // namespace

TEST_F(FloatingPanelWindowsTest, ShowsOneContentAtATimeWhereTheScreensSayAndKeepsBoth) {
  for (int round = 0; round < 2; ++round) {
    showBubble();
    EXPECT_TRUE(bubble->isVisible());
    EXPECT_FALSE(capture->isVisible());
    EXPECT_EQ(bubble->window()->geometry(), QRect(1352, 900 - 747 - 64, 64, 64));
    EXPECT_EQ(panel.frame(), bubbleFrame);
    expand();
    EXPECT_FALSE(bubble->isVisible());
    EXPECT_TRUE(capture->isVisible());
    EXPECT_EQ(capture->window()->geometry(), QRect(1036, 900 - 607 - 260, 380, 260));
    EXPECT_EQ(panel.frame(), captureFrame);
  }
  panel.orderOut();
  EXPECT_FALSE(bubble->isVisible() || capture->isVisible());
  EXPECT_EQ(bubblesMade, 1);
  EXPECT_EQ(capturesMade, 1);
}

// Else a tiling desktop gives the bubble half of the screen.
TEST_F(FloatingPanelWindowsTest, EachWindowSaysThatItHasOneSize) {
  showBubble();
  expand();
  for (const QWidget* content : {bubble, capture}) {
    const QWindow* window = content->window()->windowHandle();
    EXPECT_EQ(window->minimumSize(), content->size());
    EXPECT_EQ(window->maximumSize(), content->size());
  }
}

TEST_F(FloatingPanelWindowsTest, OnlyTheCaptureTakesTheKeyboardAndAtOnce) {
  showBubble();
  EXPECT_TRUE(other.isActiveWindow());
  EXPECT_TRUE(windowSystem.activated.empty());
  EXPECT_TRUE(bubble->window()->windowFlags() & Qt::WindowDoesNotAcceptFocus);
  expand();
  EXPECT_EQ(windowSystem.activated, std::vector<WindowID>{capture->window()->winId()});
  ASSERT_TRUE(QTest::qWaitForWindowActive(capture->window()));
  QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("at once"));
  EXPECT_EQ(field->text(), QStringLiteral("at once"));
  panel.clearFirstResponder();
  EXPECT_FALSE(field->hasFocus());
}

TEST_F(FloatingPanelWindowsTest, EachWindowIsOnAllWorkspacesBeforeItIsShown) {
  showBubble();
  expand();
  showBubble();
  const std::vector<WindowID> expected = {bubble->window()->winId(), capture->window()->winId(),
                                          bubble->window()->winId()};
  ASSERT_EQ(windowSystem.onAllWorkspaces.size(), expected.size());
  for (std::size_t index = 0; index < expected.size(); ++index) {
    EXPECT_EQ(windowSystem.onAllWorkspaces[index].window, expected[index]);
    EXPECT_FALSE(windowSystem.onAllWorkspaces[index].wasVisible);
  }
}

TEST_F(FloatingPanelWindowsTest, TheCaptureIsReadyBeforeItIsAskedFor) {
  showBubble();
  EXPECT_EQ(capturesMade, 0);
  EXPECT_TRUE(QTest::qWaitFor([this] { return capturesMade == 1; }));
  EXPECT_FALSE(capture->isVisible());
}

TEST_F(FloatingPanelWindowsTest, TellsWhenTheDesktopClosesTheCapture) {
  const QSignalSpy closed(&panel, &FloatingPanelWindows::captureClosedByDesktop);
  showBubble();
  expand();
  capture->window()->close();
  EXPECT_EQ(closed.count(), 1);
  showBubble();
  EXPECT_TRUE(bubble->isVisible());
  EXPECT_EQ(closed.count(), 1);
}

} // namespace notlet
