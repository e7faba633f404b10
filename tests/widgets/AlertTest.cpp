#include "widgets/Alert.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <gmock/gmock.h>

#include "support/MemoryDefaults.h"
#include "widgets/AppThemeContainer.h"
#include "widgets/ThemePalette.h"

namespace notlet {
namespace {

using testing::SizeIs;

class AlertTest : public testing::Test {
 protected:
  AlertTest() { container.show(); }

  Alert* opened(Alert* alert) {
    alert->open();
    alert->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(alert));
    return alert;
  }

  MemoryDefaults defaults;
  AppSettings settings{defaults};
  AppThemeContainer container{settings, new QLabel};
  const QString title = QStringLiteral("Unable to save notlet");
  const QString text = QStringLiteral("Your draft is still here. <b>Please</b> try again.");
};

TEST_F(AlertTest, AssistiveTechnologyHearsTitleAndText) {
  Alert* alert = opened(Alert::message(&container, title, text));
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(alert);
  EXPECT_EQ(accessible->role(), QAccessible::AlertMessage);
  EXPECT_EQ(accessible->text(QAccessible::Name), title);
  EXPECT_EQ(accessible->text(QAccessible::Description), text);
  QStringList labels;
  for (const QLabel* label : alert->findChildren<QLabel*>())
    labels << QAccessible::queryAccessibleInterface(const_cast<QLabel*>(label))->text(QAccessible::Name);
  EXPECT_EQ(labels, QStringList({title, text}));
  EXPECT_EQ(alert->findChild<QAbstractButton*>()->text(), QStringLiteral("OK"));
}

TEST_F(AlertTest, ALongFileNameIsShownWhole) {
  const QString path = QStringLiteral("/home/somebody") + QStringLiteral("/folder").repeated(40) +
                       QStringLiteral("word").repeated(40);
  Alert* alert = opened(Alert::message(&container, title, path));
  for (const QLabel* label : alert->findChildren<QLabel*>()) {
    const QRect needed =
        label->fontMetrics().boundingRect(label->contentsRect(), Qt::TextWordWrap, label->text());
    EXPECT_LE(needed.width(), label->width());
    EXPECT_LE(needed.height(), label->height());
  }
}

TEST_F(AlertTest, ReturnAndEscapeCloseAMessageForGood) {
  for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space, Qt::Key_Escape}) {
    SCOPED_TRACE(key);
    const QPointer<Alert> alert = opened(Alert::message(&container, title, text));
    EXPECT_TRUE(alert->isModal());
    QSignalSpy finished(alert, &QDialog::finished);
    QTest::keyClick(QApplication::focusWidget(), key);
    EXPECT_THAT(finished, SizeIs(1));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(alert);
  }
}

TEST_F(AlertTest, AQuestionIsAnsweredNoUnlessTheRedButtonIsPressed) {
  struct Case {
    std::vector<Qt::Key> keys;
    bool accepted;
  };
  for (const Case& answer : std::vector<Case>{{{Qt::Key_Return}, false},
                                              {{Qt::Key_Escape}, false},
                                              {{Qt::Key_Tab, Qt::Key_Escape}, false},
                                              {{Qt::Key_Tab, Qt::Key_Return}, true}}) {
    Alert* alert = opened(Alert::destructiveQuestion(&container, title, text, QStringLiteral("Delete")));
    QSignalSpy accepted(alert, &QDialog::accepted);
    QSignalSpy finished(alert, &QDialog::finished);
    for (const Qt::Key key : answer.keys)
      QTest::keyClick(QApplication::focusWidget(), key);
    EXPECT_THAT(finished, SizeIs(1));
    EXPECT_THAT(accepted, SizeIs(answer.accepted ? 1 : 0));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

TEST_F(AlertTest, AnAlertIsShownInTheThemeAndFollowsIt) {
  Alert* alert = opened(Alert::message(container.content(), title, text));
  settings.setSelectedThemeID("dracula");
  EXPECT_EQ(alert->grab().toImage().pixelColor(0, 0), QColor(0x28, 0x2A, 0x36));
}

} // namespace
} // namespace notlet
