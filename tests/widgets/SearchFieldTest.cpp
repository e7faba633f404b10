#include "widgets/SearchField.h"

#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <gmock/gmock.h>

#include "widgets/IconButton.h"

namespace notlet {
namespace {

using testing::SizeIs;

TEST(SearchFieldTest, TheClearButtonComesWithTheTextAndEmptiesIt) {
  QWidget window;
  auto* field = new SearchField(QStringLiteral("Search notlets"), QStringLiteral("Clear search"), &window);
  auto* clear = field->findChild<IconButton*>();
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  const int height = field->sizeHint().height();
  QSignalSpy changes(field, &SearchField::textChanged);

  EXPECT_FALSE(clear->isVisible());
  field->setFocus();
  QTest::keyClicks(field->lineEdit(), QStringLiteral("anna"));
  EXPECT_EQ(field->text(), QStringLiteral("anna"));
  EXPECT_TRUE(clear->isVisible());
  EXPECT_EQ(clear->accessibleName(), QStringLiteral("Clear search"));
  EXPECT_EQ(field->sizeHint().height(), height);

  QTest::mouseClick(clear, Qt::LeftButton);
  EXPECT_EQ(field->text(), QString());
  EXPECT_FALSE(clear->isVisible());
  EXPECT_TRUE(field->lineEdit()->hasFocus());
  EXPECT_THAT(changes, SizeIs(5));
}

TEST(SearchFieldTest, TheClearButtonLeavesTheKeyboardWhereItIsUnlessItHadIt) {
  QWidget window;
  auto* layout = new QVBoxLayout(&window);
  auto* field = new SearchField(QStringLiteral("Search notlets"), QStringLiteral("Clear search"));
  auto* other = new QLineEdit;
  layout->addWidget(field);
  layout->addWidget(other);
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  auto* clear = field->findChild<IconButton*>();

  field->setText(QStringLiteral("anna"));
  other->setFocus();
  QTest::mouseClick(clear, Qt::LeftButton);
  EXPECT_EQ(field->text(), QString());
  EXPECT_TRUE(other->hasFocus());

  field->setText(QStringLiteral("anna"));
  clear->setFocus();
  QTest::keyClick(clear, Qt::Key_Return);
  EXPECT_TRUE(field->lineEdit()->hasFocus());
}

TEST(SearchFieldTest, TheSameTextLeavesTheCursorAlone) {
  SearchField field(QStringLiteral("Search"), QStringLiteral("Clear"));
  field.setText(QStringLiteral("anna"));
  field.lineEdit()->setCursorPosition(1);
  field.setText(QStringLiteral("anna"));
  EXPECT_EQ(field.lineEdit()->cursorPosition(), 1);
}

TEST(SearchFieldTest, FocusIsAnnouncedAndVisible) {
  QWidget window;
  auto* field = new SearchField(QStringLiteral("Search"), QStringLiteral("Clear"), &window);
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  window.setFocus();
  const QImage resting = field->grab().toImage();
  QSignalSpy focus(field, &SearchField::focusChanged);
  field->setFocus();
  EXPECT_NE(field->grab().toImage().pixelColor(field->width() / 2, 0),
            resting.pixelColor(field->width() / 2, 0));
  QMenu menu;
  menu.popup(QPoint());
  menu.close();
  window.setFocus();
  ASSERT_THAT(focus, SizeIs(2)) << "a menu over it takes nothing away";
  EXPECT_TRUE(focus[0][0].toBool());
  EXPECT_FALSE(focus[1][0].toBool());
}

} // namespace
} // namespace notlet
