#include "shortcuts/ui/SettingsWindow.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QLabel>
#include <QScrollArea>
#include <QTest>

#include "shortcuts/SettingsFixture.h"
#include "shortcuts/ui/KeyRow.h"
#include "shortcuts/ui/MacSettingsView.h"
#include "shortcuts/ui/ShortcutForm.h"
#include "support/MemoryDefaults.h"
#include "widgets/TextConversion.h"

namespace notlet {
namespace {

class SettingsWindowTest : public SettingsFixture {
 protected:
  SettingsWindowTest() {
    screen.open();
    screen.select(SettingsScreen::Tab::shortcuts);
    window.reveal();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
  }

  template<typename Control>
  [[nodiscard]] Control* named(const QString& name) const {
    for (Control* control : window.findChildren<Control*>()) {
      if (control->accessibleName() == name)
        return control;
    }
    ADD_FAILURE() << qPrintable(name);
    return nullptr;
  }
  [[nodiscard]] QLineEdit* field(const char* name) const {
    return named<QLineEdit>(QString::fromLatin1(name));
  }
  [[nodiscard]] QAbstractButton* button(const char* text) const {
    for (auto* candidate : window.findChildren<QAbstractButton*>()) {
      if (candidate->text() == QLatin1String(text) && candidate->isVisible())
        return candidate;
    }
    ADD_FAILURE() << text;
    return nullptr;
  }
  void click(const char* text) const { QTest::mouseClick(button(text), Qt::LeftButton); }
  [[nodiscard]] bool shows(const QString& text) const {
    const auto labels = window.findChildren<QLabel*>();
    return std::ranges::any_of(labels,
                               [&](QLabel* label) { return label->isVisible() && label->text() == text; });
  }
  [[nodiscard]] Alert* shownAlert() const {
    for (Alert* candidate : window.findChildren<Alert*>()) {
      if (candidate->isVisible())
        return candidate;
    }
    return nullptr;
  }
  static void answer(Alert* alert, const char* text) {
    for (auto* candidate : alert->findChildren<QAbstractButton*>()) {
      if (candidate->text() == QLatin1String(text))
        return candidate->click();
    }
    ADD_FAILURE() << text;
  }

  MemoryDefaults defaults;
  AppSettings themes{defaults};
  DesktopCapabilities capabilities;
  ShortcutForm* form = new ShortcutForm(draft, fromUtf8(file.string()), [this] { return capabilities; });
  MacSettingsView* view = new MacSettingsView(screen, new QLabel(QStringLiteral("The themes")), form);
  SettingsWindow window{themes, screen, draft, view};
};

TEST_F(SettingsWindowTest, TheTabsShowThemesAndShortcutsAt620By620) {
  EXPECT_EQ(window.size(), QSize(620, 620));
  EXPECT_TRUE(form->isVisible());
  click("Themes");
  EXPECT_TRUE(shows(QStringLiteral("The themes")));
  EXPECT_FALSE(form->isVisible());
  click("Shortcuts");
  EXPECT_TRUE(form->isVisible());
  EXPECT_EQ(button("Shortcuts")->accessibleDescription(), QStringLiteral("Current tab"));
}

TEST_F(SettingsWindowTest, ReturnInAFieldSavesWhatWasTyped) {
  QLineEdit* leader = field("Shortcut");
  EXPECT_EQ(leader->text(), QStringLiteral("control+s"));
  EXPECT_EQ(leader->placeholderText(), QStringLiteral("Shortcut"));
  EXPECT_EQ(field("Next alternate")->placeholderText(), QStringLiteral("Key"));
  leader->selectAll();
  QTest::keyClicks(leader, QStringLiteral("control+k"));
  EXPECT_TRUE(shows(QStringLiteral("Not saved")));
  EXPECT_EQ(settings.config().leader, "control+s");
  QTest::keyClick(leader, Qt::Key_Return);
  EXPECT_EQ(settings.config().leader, "control+k");
  EXPECT_FALSE(shows(QStringLiteral("Not saved")));
}

TEST_F(SettingsWindowTest, ReturnOnAButtonPressesThatButton) {
  draft.setText(ShortcutField::leader, "control+k");
  button("Restore Defaults")->setFocus();
  QTest::keyClick(button("Restore Defaults"), Qt::Key_Return);
  EXPECT_EQ(field("Shortcut")->text(), QStringLiteral("control+s"));
  EXPECT_EQ(settings.config().leader, "control+s");
}

TEST_F(SettingsWindowTest, ButtonsDoWhatTheySay) {
  put(withLeader("control+o"));
  click("Reload");
  EXPECT_EQ(field("Shortcut")->text(), QStringLiteral("control+o"));
  click("Open Config File");
  EXPECT_EQ(opener.opened, std::vector{file});
  QTest::mouseClick(named<QAbstractButton>(QStringLiteral("Shorten timeout")), Qt::LeftButton);
  EXPECT_TRUE(shows(QStringLiteral("Timeout: 1100 ms")));
  click("Save");
  EXPECT_EQ(settings.config().leaderTimeoutMilliseconds, 1100);
  QLineEdit* path = field("Path of the config file");
  path->selectAll();
  path->copy();
  EXPECT_EQ(QGuiApplication::clipboard()->text(), fromUtf8(file.string()));
}

TEST_F(SettingsWindowTest, RecordingTakesTheKeyAndEndsWhenTheKeyboardGoesElsewhere) {
  auto* record = named<QAbstractButton>(QStringLiteral("Record key for Search"));
  field("Next")->setFocus();
  QTest::mouseClick(record, Qt::LeftButton);
  EXPECT_TRUE(record->hasFocus()) << "an input method would take the key from a field";
  EXPECT_EQ(record->text(), QStringLiteral("Press a key"));
  EXPECT_TRUE(screen.handle(typed("j")));
  EXPECT_EQ(field("Search")->text(), QStringLiteral("j"));
  EXPECT_EQ(field("Search")->accessibleDescription(),
            QStringLiteral("Takes this key from “Next alternate”."));
  EXPECT_TRUE(shows(QStringLiteral("“Search” takes this key first.")));

  QTest::mouseClick(record, Qt::LeftButton);
  field("Next")->setFocus();
  EXPECT_EQ(draft.state().recording, std::nullopt);
  EXPECT_EQ(record->text(), QStringLiteral("Record"));
}

TEST_F(SettingsWindowTest, AnAlertShowsTheSharedMessageUntilItIsDismissed) {
  draft.setText(ShortcutField::leader, "");
  click("Save");
  Alert* alert = shownAlert();
  ASSERT_NE(alert, nullptr);
  EXPECT_EQ(alert->accessibleName(), QStringLiteral("Shortcut Settings"));
  EXPECT_EQ(alert->accessibleDescription(),
            QStringLiteral("The leader must include a key, for example control+s."));
  settings.setErrorMessage("Another message.");
  alert = shownAlert();
  ASSERT_NE(alert, nullptr);
  EXPECT_EQ(alert->accessibleDescription(), QStringLiteral("Another message."));
  EXPECT_TRUE(settings.errorMessage()) << "replacing an alert dismisses nothing";
  answer(alert, "OK");
  EXPECT_EQ(settings.errorMessage(), std::nullopt);
  EXPECT_EQ(shownAlert(), nullptr);
  EXPECT_EQ(field("Shortcut")->text(), QString());
}

TEST_F(SettingsWindowTest, AMessageWaitsUntilTheWindowIsShown) {
  screen.close();
  EXPECT_FALSE(window.isVisible());
  put("{ broken");
  settings.reload();
  EXPECT_EQ(shownAlert(), nullptr);
  screen.open();
  ASSERT_NE(shownAlert(), nullptr);
}

TEST_F(SettingsWindowTest, ClosingTheWindowWithUnsavedKeysAsks) {
  draft.setText(ShortcutField::next, "n");
  window.close();
  ASSERT_NE(shownAlert(), nullptr);
  answer(shownAlert(), "Cancel");
  EXPECT_TRUE(window.isVisible());
  EXPECT_EQ(field("Next")->text(), QStringLiteral("n"));
  window.close();
  ASSERT_NE(shownAlert(), nullptr);
  answer(shownAlert(), "Discard");
  EXPECT_FALSE(window.isVisible());
}

TEST_F(SettingsWindowTest, TellsOfThemesThatAreNotStoredUntilTheyAre) {
  defaults.failsToWrite = true;
  themes.setSelectedThemeID("ink");
  const auto* notice = named<QLabel>(fromUtf8(themes.warning()));
  EXPECT_TRUE(notice->isVisible());
  defaults.failsToWrite = false;
  themes.tryAgain();
  EXPECT_FALSE(notice->isVisible());
}

TEST_F(SettingsWindowTest, TheDesktopIsDescribedAsItIsNow) {
  capabilities = {StatusItemRoute::xembed, HotKeyRoute::x11, true, true, true, true};
  click("Themes");
  click("Shortcuts");
  EXPECT_TRUE(shows(QStringLiteral("Control+Super+J opens Quick Notlet from every program.")));
}

TEST_F(SettingsWindowTest, EverythingFitsTheSmallestWindow) {
  window.resize(window.minimumSize());
  EXPECT_EQ(window.size(), QSize(360, 420));
  QCoreApplication::sendPostedEvents();
  for (const char* text : {"Open Config File", "Reload", "Restore Defaults", "Save"}) {
    const QAbstractButton* control = button(text);
    EXPECT_TRUE(window.rect().contains(QRect(control->mapTo(&window, QPoint()), control->size()))) << text;
    EXPECT_GE(control->width(), control->sizeHint().width()) << text;
  }
  const auto* scroll = form->findChild<QScrollArea*>();
  EXPECT_LE(scroll->widget()->minimumSizeHint().width(), scroll->viewport()->width());
}

} // namespace
} // namespace notlet
