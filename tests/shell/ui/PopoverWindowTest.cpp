#include "shell/ui/PopoverWindow.h"

#include <gtest/gtest.h>

#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include "shell/ui/MacStorageUnavailableView.h"
#include "support/FakeWindowSystem.h"
#include "support/MemoryDefaults.h"

namespace notlet {

namespace {

using CloseReason = PopoverWindow::CloseReason;

class PopoverWindowTest : public testing::Test {
 protected:
  PopoverWindowTest() {
    content->setFixedSize(380, 260);
    auto* layout = new QVBoxLayout(content);
    layout->addWidget(field);
    window = std::make_unique<PopoverWindow>(settings, windowSystem, content);
    QObject::connect(window.get(), &PopoverWindow::closed, window.get(),
                     [this](CloseReason reason) { reasons.push_back(reason); });
  }

  void open() {
    elsewhere.show();
    elsewhere.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&elsewhere));
    window->standAt({200, 30}, {500, 0, 20, 20});
    window->open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    field->setFocus();
  }

  MemoryDefaults defaults;
  AppSettings settings{defaults};
  FakeWindowSystem windowSystem;
  QWidget* content = new QWidget;
  QLineEdit* field = new QLineEdit;
  QWidget elsewhere;
  std::vector<CloseReason> reasons;
  std::unique_ptr<PopoverWindow> window;
};

} // namespace

TEST_F(PopoverWindowTest, StandsWhereItIsToldWithTheKeyboard) {
  window->prepare();
  EXPECT_FALSE(window->isVisible());
  open();
  EXPECT_EQ(window->geometry(), QRect(200, 30, 380, 260));
  EXPECT_EQ(windowSystem.activated, std::vector<WindowID>{window->winId()});
  EXPECT_TRUE(windowSystem.isMouseWatched);
  EXPECT_TRUE(reasons.empty());
}

TEST_F(PopoverWindowTest, ClosesOnceAndSaysWhy) {
  const struct {
    std::function<void()> act;
    CloseReason reason;
  } cases[] = {
      {[this] { window->dismiss(); }, CloseReason::asked},
      {[this] { window->close(); }, CloseReason::asked},
      {[this] { QTest::keyClick(field, Qt::Key_Escape); }, CloseReason::escape},
      {[this] { windowSystem.pressMouse({199, 100}); }, CloseReason::pressedElsewhere},
      {[this] {
         elsewhere.activateWindow();
         EXPECT_TRUE(QTest::qWaitForWindowActive(&elsewhere));
       },
       CloseReason::deactivated},
  };
  for (const auto& [act, reason] : cases) {
    open();
    reasons.clear();
    act();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(reasons, std::vector{reason});
    EXPECT_FALSE(windowSystem.isMouseWatched);
    window->dismiss();
    EXPECT_EQ(reasons.size(), 1U);
  }
}

TEST_F(PopoverWindowTest, PressesInsideAndAtItsAnchorDoNotClose) {
  open();
  for (const QPoint point : {QPoint(200, 30), QPoint(579, 289), QPoint(390, 160), QPoint(510, 10)})
    windowSystem.pressMouse(point);
  EXPECT_TRUE(window->isVisible());
}

TEST_F(PopoverWindowTest, StaysWhileADialogOfItsOwnIsUpAndTakesTheKeyboardBack) {
  open();
  QDialog dialog(content);
  dialog.open();
  dialog.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
  windowSystem.pressMouse({900, 600});
  EXPECT_TRUE(window->isVisible());
  dialog.accept();
  EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
  EXPECT_EQ(windowSystem.activated.size(), 2U);
  windowSystem.pressMouse({900, 600});
  EXPECT_EQ(reasons, std::vector{CloseReason::pressedElsewhere});
}

TEST_F(PopoverWindowTest, StaysWhileAMenuOfItsOwnIsUp) {
  open();
  QMenu menu(field);
  menu.addAction(QStringLiteral("Copy"));
  menu.popup({560, 280});
  windowSystem.pressMouse({600, 300});
  EXPECT_TRUE(window->isVisible());
}

TEST_F(PopoverWindowTest, IsAsTallAsALongReasonNeeds) {
  PopoverWindow brief(settings, windowSystem, new MacStorageUnavailableView(std::nullopt));
  EXPECT_EQ(brief.size(), QSize(380, 260));
  std::string reason = "The store cannot be opened.";
  for (int line = 0; line < 20; ++line)
    reason += " It is damaged in one more place than was known before.";
  PopoverWindow wordy(settings, windowSystem, new MacStorageUnavailableView(reason));
  EXPECT_EQ(wordy.width(), 380);
  EXPECT_GT(wordy.height(), 320);
}

} // namespace notlet
