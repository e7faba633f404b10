#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <gmock/gmock.h>

#include "themes/AppThemeCatalog.h"
#include "widgets/IconButton.h"
#include "widgets/Motion.h"
#include "widgets/NoticeBar.h"
#include "widgets/TextButton.h"
#include "widgets/ThemePalette.h"

namespace notlet {
namespace {

using testing::SizeIs;

class ButtonsTest : public testing::Test {
 protected:
  ButtonsTest() {
    window.setPalette(themePalette(AppThemeCatalog::themeWithID("tokyo-night"), QPalette()));
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(field);
    layout->addWidget(icon);
    layout->addWidget(text);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    field->setFocus();
  }

  QWidget window;
  QLineEdit* field = new QLineEdit;
  IconButton* icon = new IconButton(Symbol::trash, QStringLiteral("Delete"));
  TextButton* text = new TextButton(Symbol::pencil, QStringLiteral("Edit"), TextButton::Look::primary);
};

TEST_F(ButtonsTest, KeysPressTheButtonWithTheFocus) {
  for (QAbstractButton* button : {static_cast<QAbstractButton*>(icon), static_cast<QAbstractButton*>(text)}) {
    QSignalSpy clicks(button, &QAbstractButton::clicked);
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Return);
    QTest::keyClick(button, Qt::Key_Enter, Qt::KeypadModifier);
    QTest::keyClick(button, Qt::Key_Space);
    EXPECT_THAT(clicks, SizeIs(3));
    QTest::keyClick(button, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_THAT(clicks, SizeIs(3)) << "a chord belongs to the window";
    button->setEnabled(false);
    QTest::keyClick(button, Qt::Key_Return);
    EXPECT_THAT(clicks, SizeIs(3));
  }
}

TEST_F(ButtonsTest, ADismissedNoticeGivesTheKeyboardBack) {
  NoticeBar notice(&window);
  QObject::connect(&notice, &NoticeBar::dismissed, [&] { notice.setText({}); });
  notice.setText(QStringLiteral("Something is wrong."));
  auto* dismiss = notice.findChild<IconButton*>();
  text->setFocus();
  dismiss->setFocus(Qt::TabFocusReason);
  QTest::keyClick(dismiss, Qt::Key_Space);
  EXPECT_FALSE(notice.isVisible());
  EXPECT_TRUE(text->hasFocus());
}

TEST_F(ButtonsTest, TabReachesThemAndClicksLeaveTheKeyboardWhereItIs) {
  QTest::mouseClick(icon, Qt::LeftButton);
  EXPECT_TRUE(field->hasFocus());
  QTest::keyClick(field, Qt::Key_Tab);
  EXPECT_TRUE(icon->hasFocus());
}

TEST_F(ButtonsTest, FocusHoverAndDisabledCanBeSeen) {
  for (QAbstractButton* button : {static_cast<QAbstractButton*>(icon), static_cast<QAbstractButton*>(text)}) {
    field->setFocus();
    const QImage plain = button->grab().toImage();
    button->setFocus();
    EXPECT_NE(button->grab().toImage(), plain);
    EXPECT_EQ(button->grab().toImage().pixelColor(button->width() / 2, 0),
              button->palette().color(ThemeRole::focusRing));
    field->setFocus();
    button->setDown(true);
    EXPECT_NE(button->grab().toImage(), plain);
    button->setDown(false);
    button->setEnabled(false);
    EXPECT_NE(button->grab().toImage(), plain);
  }
}

TEST_F(ButtonsTest, NamesAreForEveryone) {
  icon->setName(QStringLiteral("Remove"));
  EXPECT_EQ(QAccessible::queryAccessibleInterface(icon)->text(QAccessible::Name), QStringLiteral("Remove"));
  EXPECT_EQ(icon->toolTip(), QStringLiteral("Remove"));
  EXPECT_EQ(QAccessible::queryAccessibleInterface(text)->text(QAccessible::Name), QStringLiteral("Edit"));
}

TEST_F(ButtonsTest, AConfirmationIsShownAndGoesWithOrWithoutMotion) {
  for (const bool reduced : {true, false}) {
    Motion::setReduced(reduced);
    EXPECT_TRUE(!reduced || Motion::duration(text).count() == 0);
    auto* label = new QLineEdit(&window);
    FadeEffect fade(label);
    EXPECT_TRUE(label->isHidden());
    fade.setShown(true);
    EXPECT_FALSE(label->isHidden());
    fade.setShown(false);
    fade.setShown(true);
    fade.setShown(false);
    EXPECT_TRUE(QTest::qWaitFor([label] { return label->isHidden(); }, 3000));
  }
  Motion::setReduced(false);
}

} // namespace
} // namespace notlet
