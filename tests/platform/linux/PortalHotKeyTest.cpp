#include "platform/linux/PortalHotKey.h"

#include <gmock/gmock.h>

#include <QSignalSpy>
#include <QTest>

#include "platform/linux/PortalAppearance.h"
#include "support/FakePortal.h"
#include "support/PrivateBus.h"

namespace notlet {

namespace {

const QString createCall = QStringLiteral("CreateSession");
const QString bindCall = QStringLiteral("BindShortcuts");
const QString shortcut = QStringLiteral("quick-notlet");

class PortalHotKeyTest : public testing::Test {
 protected:
  [[nodiscard]] bool settle() const { return FakePortal::settle(source()); }

  /// Presses the key at the desktop; how often the program has heard of it so far.
  qsizetype press(const QString& session, const QString& id = shortcut) {
    portal.activate(session, id);
    EXPECT_TRUE(settle());
    return presses.count();
  }

  PrivateBus bus;
  QDBusConnection desktop = bus.connect();
  BusSource source = bus.source();
  FakePortal portal{desktop};
  PortalHotKey key{source};
  QSignalSpy installs{&key, &PortalHotKey::installed};
  QSignalSpy presses{&key, &PortalHotKey::pressed};
  QSignalSpy failures{&key, &PortalHotKey::failed};
};

/// Everything is asked for before the process has had anything to do with a portal.
bool worksInAFreshProcess() {
  PrivateBus bus;
  const BusSource source = bus.source();
  PortalAppearance appearance(source);
  appearance.start();
  PortalHotKey key(source);
  key.install();
  QSignalSpy presses(&key, &PortalHotKey::pressed);
  const QDBusConnection desktop = bus.connect();
  FakePortal portal(desktop);
  const bool isInstalled = QTest::qWaitFor([&] { return key.isInstalled(); });
  portal.activate(portal.session, shortcut);
  portal.changeSetting(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"), 1U);
  return isInstalled && QTest::qWaitFor([&] { return presses.count() == 1 && appearance.isDark(); });
}

} // namespace

// Qt's bus library learns types by and by, and refuses to listen for those that it does not know yet.
TEST(PortalTest, IsHeardFromTheStart) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(std::exit(worksInAFreshProcess() ? 0 : 1), testing::ExitedWithCode(0), "");
}

// Desktops read the shortcuts in one of two calls, and answer before or after their reply.
TEST_F(PortalHotKeyTest, IsInstalledWhateverTheOrderOfTheAnswers) {
  for (const auto& [early, ownPaths] : {std::pair(false, false), {true, false}, {false, true}}) {
    portal.answersBeforeReply = early;
    portal.makesOwnPaths = ownPaths;
    portal.givesSessionAsPath = early;
    portal.triggers.clear();
    PortalHotKey each(source);
    QSignalSpy eachInstalled(&each, &PortalHotKey::installed);
    QSignalSpy eachPressed(&each, &PortalHotKey::pressed);
    each.install();
    each.install();
    ASSERT_TRUE(eachInstalled.wait()) << early << ownPaths;
    EXPECT_TRUE(each.isInstalled());
    const QStringList wanted = {shortcut + QStringLiteral("=CTRL+LOGO+j")};
    EXPECT_EQ(portal.triggers.value(createCall), wanted);
    EXPECT_EQ(portal.triggers.value(bindCall), wanted);
    EXPECT_THAT(portal.session.toStdString(), testing::EndsWith("/notlet"));
    portal.activate(portal.session, shortcut);
    EXPECT_TRUE(eachPressed.wait());
    EXPECT_EQ(eachPressed.count(), 1);
  }
}

TEST_F(PortalHotKeyTest, OnlyItsOwnKeyCounts) {
  key.install();
  ASSERT_TRUE(installs.wait());
  EXPECT_EQ(press(portal.session), 1);
  EXPECT_EQ(press(portal.session + QStringLiteral("2")), 1);
  EXPECT_EQ(press(portal.session, QStringLiteral("other")), 1);
  EXPECT_EQ(press(portal.session), 2);
  key.uninstall();
  EXPECT_FALSE(key.isInstalled());
  EXPECT_EQ(press(portal.session), 2);
  EXPECT_TRUE(portal.calls.contains(QStringLiteral("Close")));
  key.install();
  ASSERT_TRUE(installs.wait());
  EXPECT_EQ(press(portal.session), 3);
}

// Without what the desktop gives for it, a window that is there already may not come forward.
TEST_F(PortalHotKeyTest, TellsOfTheActivationTokenBeforeThePress) {
  std::vector<std::string> heard;
  QObject::connect(&key, &PortalHotKey::activationTokenGiven,
                   [&heard](const std::string& token) { heard.push_back(token); });
  QObject::connect(&key, &PortalHotKey::pressed, [&heard] { heard.emplace_back("pressed"); });
  key.install();
  ASSERT_TRUE(installs.wait());
  portal.activate(portal.session, shortcut,
                  {{QStringLiteral("activation_token"), QStringLiteral("kde-4711")}});
  portal.activate(portal.session, shortcut, {{QStringLiteral("activation_token"), 4711}});
  portal.activate(portal.session, shortcut);
  ASSERT_TRUE(settle());
  EXPECT_THAT(heard, testing::ElementsAre("kde-4711", "pressed", "4711", "pressed", "pressed"));
}

TEST_F(PortalHotKeyTest, SaysOnceThatItIsRefused) {
  const struct {
    QString method;
    bool isUnknown;
  } cases[] = {{createCall, true}, {createCall, false}, {bindCall, true}, {bindCall, false}};
  for (const auto& [method, isUnknown] : cases) {
    for (const uint code : {1U, 2U}) {
      portal.unknownMethods = isUnknown ? QStringList{method} : QStringList();
      portal.responses = {{method, code}};
      PortalHotKey each(source);
      QSignalSpy refused(&each, &PortalHotKey::failed);
      each.install();
      ASSERT_TRUE(refused.wait()) << method.toStdString() << code;
      ASSERT_TRUE(settle());
      EXPECT_EQ(refused.count(), 1);
      EXPECT_EQ(refused.at(0).at(0).value<GlobalHotKey::Failure>(), GlobalHotKey::Failure::notInstalled);
      EXPECT_FALSE(each.isInstalled());
    }
  }
}

TEST_F(PortalHotKeyTest, ARestartedPortalIsAskedAgain) {
  key.install();
  ASSERT_TRUE(installs.wait());
  portal.vanish();
  EXPECT_TRUE(QTest::qWaitFor([this] { return !key.isInstalled(); }));
  portal.appear();
  ASSERT_TRUE(installs.wait());
  EXPECT_EQ(press(portal.session), 1);
  EXPECT_EQ(portal.calls.count(bindCall), 2);
  EXPECT_EQ(failures.count(), 0);
}

TEST_F(PortalHotKeyTest, APortalThatStaysAwayIsCalled) {
  PortalHotKey impatient(source, std::chrono::milliseconds(0));
  QSignalSpy refused(&impatient, &PortalHotKey::failed);
  QSignalSpy installed(&impatient, &PortalHotKey::installed);
  impatient.install();
  ASSERT_TRUE(installed.wait());
  portal.vanish();
  ASSERT_TRUE(refused.wait()) << "nobody starts it on this bus";
  portal.appear();
  ASSERT_TRUE(installed.wait());
  EXPECT_EQ(refused.count(), 1);
}

TEST_F(PortalHotKeyTest, APortalThatComesLateIsAsked) {
  portal.vanish();
  key.install();
  ASSERT_TRUE(failures.wait());
  portal.appear();
  ASSERT_TRUE(installs.wait());
  EXPECT_EQ(press(portal.session), 1);
}

// The user may be asked for minutes; the portal may go meanwhile.
TEST_F(PortalHotKeyTest, MayBeGivenUpWhileTheDesktopThinks) {
  key.install();
  key.uninstall();
  ASSERT_TRUE(settle());
  key.install();
  portal.vanish();
  portal.appear();
  ASSERT_TRUE(installs.wait());
  EXPECT_EQ(press(portal.session), 1);
}

TEST_F(PortalHotKeyTest, TheDesktopMayTakeItBack) {
  key.install();
  ASSERT_TRUE(installs.wait());
  portal.closeSession();
  ASSERT_TRUE(failures.wait());
  EXPECT_FALSE(key.isInstalled());
}

TEST_F(PortalHotKeyTest, TheBusMayDie) {
  key.install();
  ASSERT_TRUE(installs.wait());
  bus.die();
  ASSERT_TRUE(failures.wait());
  EXPECT_FALSE(key.isInstalled());
  key.uninstall();
  key.install();
  EXPECT_EQ(failures.count(), 2);
}

} // namespace notlet
