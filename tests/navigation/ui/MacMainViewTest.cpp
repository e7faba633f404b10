#include "navigation/ui/MacMainView.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QTest>

#include "navigation/NavigationFixture.h"
#include "widgets/TextConversion.h"

namespace notlet {

namespace {

class MacMainViewTest : public NavigationFixture {
 protected:
  MacMainViewTest() {
    view.resize(840, 600);
    view.show();
  }

  /// The visible button with this name, which only one of the two navigations may show.
  [[nodiscard]] IconButton* button(const QString& name) const {
    IconButton* found = nullptr;
    for (IconButton* candidate : view.findChildren<IconButton*>()) {
      if (!candidate->isVisible() || candidate->accessibleName() != name)
        continue;
      EXPECT_EQ(found, nullptr) << qPrintable(name);
      found = candidate;
    }
    return found;
  }
  [[nodiscard]] QString shownSection() const {
    QString texts;
    for (const QLabel* label : view.findChildren<QLabel*>()) {
      if (label->isVisible())
        texts += label->text();
    }
    return texts;
  }
  [[nodiscard]] QWidget* section() const {
    return view.findChild<QLabel*>(QString(), Qt::FindDirectChildrenOnly);
  }

  MacMainView view{navigation, [](MacSection section) { return new QLabel(fromUtf8(title(section))); }};
};

} // namespace

TEST_F(MacMainViewTest, ButtonsOfBothFormsSwitchTheSection) {
  for (const int width : {840, 400}) {
    view.resize(width, 600);
    for (const MacSection section : {MacSection::archive, MacSection::themes, MacSection::notlet}) {
      const QString name = fromUtf8(title(section));
      ASSERT_NE(button(name), nullptr);
      EXPECT_EQ(button(name)->toolTip(), name);
      QTest::mouseClick(button(name), Qt::LeftButton);
      EXPECT_EQ(shownSection(), name);
      EXPECT_EQ(button(name)->accessibleDescription(), QStringLiteral("Current section"));
    }
    posted.clear();
    QTest::mouseClick(button(QStringLiteral("Switch to Bubble Mode")), Qt::LeftButton);
    EXPECT_EQ(posted, std::vector{CommandName::enterMacFloatingMode});
  }
}

TEST_F(MacMainViewTest, TheStripTurnsIntoABarBelow520AndTheSectionStays) {
  navigation.select(MacSection::archive);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  const QWidget* archive = section();
  for (const auto& [width, hasBar] :
       {std::pair{520, false}, std::pair{519, true}, std::pair{360, true}, std::pair{521, false}}) {
    view.resize(width, 420);
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(view.findChild<MacCompactNavigation*>()->isVisible(), hasBar) << width;
    EXPECT_EQ(view.findChild<MacSidebar*>()->isVisible(), !hasBar) << width;
    EXPECT_EQ(shownSection(), QStringLiteral("Archive"));
  }
  EXPECT_EQ(section(), archive) << "not made anew";
  EXPECT_EQ(view.minimumSize(), QSize(360, 420));
}

TEST_F(MacMainViewTest, EachVisitMakesTheSectionAnew) {
  const QPointer<QWidget> first = section();
  navigation.select(MacSection::archive);
  navigation.select(MacSection::notlet);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(first.isNull());
  EXPECT_EQ(shownSection(), QStringLiteral("Notlet"));
}

} // namespace notlet
