#include "platform/linux/TrayStatusItem.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

#include "support/FakeAppearance.h"
#include "support/PrivateBus.h"

namespace notlet {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

/// The desktop's list of StatusNotifierItems.
class NotifierWatcher final : public QDBusVirtualObject {
 public:
  explicit NotifierWatcher(const QDBusConnection& bus) : m_bus(bus) {
    m_bus.registerVirtualObject(watcherPath, this);
  }

  void appear() { m_bus.registerService(watcherName); }
  void vanish() { m_bus.unregisterService(watcherName); }

  void setHost(bool isThere) {
    hasHost = isThere;
    m_bus.send(QDBusMessage::createSignal(
        watcherPath, watcherName,
        QStringLiteral("StatusNotifierHost%1")
            .arg(isThere ? QStringLiteral("Registered") : QStringLiteral("Unregistered"))));
  }

  [[nodiscard]] QString introspect(const QString&) const override { return {}; }

  bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
    ++questions;
    return m_bus.send(call.createReply(QVariant::fromValue(QDBusVariant(hasHost))));
  }

  bool hasHost = true;
  int questions = 0;

 private:
  QDBusConnection m_bus;
};

class TrayStatusItemTest : public testing::Test {
 protected:
  [[nodiscard]] bool waitForShown(bool isShown) {
    return QTest::qWaitFor([&] { return item.isShown() == isShown; });
  }

  PrivateBus bus;
  QDBusConnection desktop = bus.connect();
  NotifierWatcher watcher{desktop};
  FakeAppearance appearance;
  TrayStatusItem item{appearance, bus.source()};
  QSignalSpy changes{&item, &StatusItem::shownChanged};
};

} // namespace

TEST(TrayRouteTest, TheNewerKindIsPreferredAndTheFirstKindStays) {
  using Presence = TrayNotifierHosts::Presence;
  using Route = StatusItemRoute;
  const struct {
    TrayPresence presence;
    Route expected;
  } cases[] = {
      // Nobody has answered yet.
      {{Presence::unknown, false, false, Route::none}, Route::none},
      {{Presence::unknown, true, false, Route::none}, Route::none},
      {{Presence::unknown, true, true, Route::none}, Route::xembed},
      // One of both kinds.
      {{Presence::none, false, true, Route::none}, Route::none},
      {{Presence::none, true, false, Route::none}, Route::xembed},
      {{Presence::host, false, false, Route::none}, Route::statusNotifierItem},
      {{Presence::host, true, false, Route::none}, Route::statusNotifierItem},
      // A desktop that is starting, and one whose watcher has no panel.
      {{Presence::watcherWithoutHost, true, false, Route::none}, Route::none},
      {{Presence::watcherWithoutHost, true, true, Route::none}, Route::xembed},
      {{Presence::watcherWithoutHost, false, true, Route::none}, Route::none},
      // Later changes.
      {{Presence::host, true, true, Route::xembed}, Route::xembed},
      {{Presence::host, false, true, Route::xembed}, Route::none},
      {{Presence::watcherWithoutHost, true, false, Route::xembed}, Route::xembed},
      {{Presence::none, true, true, Route::statusNotifierItem}, Route::none},
      {{Presence::host, true, true, Route::statusNotifierItem}, Route::statusNotifierItem},
  };
  int number = 0;
  for (const auto& [presence, expected] : cases)
    EXPECT_EQ(trayRoute(presence), expected) << "case " << number++;
}

TEST_F(TrayStatusItemTest, ComesAndGoesWithTheHost) {
  item.start();
  EXPECT_FALSE(item.isShown());
  EXPECT_EQ(item.route(), StatusItemRoute::none);
  const struct {
    std::function<void()> happens;
    bool isShown;
  } steps[] = {
      {[this] { watcher.appear(); }, true},
      {[this] { watcher.vanish(); }, false},
      {[this] {
         watcher.hasHost = false;
         watcher.appear();
         watcher.setHost(true);
       },
       true},
      {[this] { watcher.setHost(false); }, false},
      {[this] { watcher.setHost(true); }, true},
      {[this] { bus.die(); }, false},
  };
  for (const auto& [happens, isShown] : steps) {
    changes.clear();
    happens();
    EXPECT_TRUE(waitForShown(isShown));
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(item.route(), isShown ? StatusItemRoute::statusNotifierItem : StatusItemRoute::none);
  }
}

TEST_F(TrayStatusItemTest, AWatcherWithoutAHostShowsNothing) {
  watcher.hasHost = false;
  watcher.appear();
  item.start();
  ASSERT_TRUE(QTest::qWaitFor([this] { return watcher.questions > 0; }));
  watcher.setHost(false);
  ASSERT_TRUE(QTest::qWaitFor([this] { return watcher.questions > 1; }));
  EXPECT_FALSE(item.isShown());
}

TEST_F(TrayStatusItemTest, TheMenuOffersWhatTheProgramCanDo) {
  watcher.appear();
  item.start();
  ASSERT_TRUE(waitForShown(true));
  QStringList chosen;
  const struct {
    QString text;
    void (StatusItem::*signal)();
  } choices[] = {
      {QStringLiteral("Quick Notlet"), &StatusItem::quickNotletChosen},
      {QStringLiteral("Open Notlet"), &StatusItem::openChosen},
      {QStringLiteral("Settings…"), &StatusItem::settingsChosen},
      {QStringLiteral("Quit Notlet"), &StatusItem::quitChosen},
  };
  QStringList offered;
  for (const auto& [text, signal] : choices)
    QObject::connect(&item, signal, &item, [&chosen, text = text] { chosen.append(text); });
  for (QAction* action : item.menu()->actions()) {
    offered.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    action->trigger();
  }
  EXPECT_EQ(offered.join(QLatin1Char('|')),
            QStringLiteral("Quick Notlet|Open Notlet|-|Settings…|-|Quit Notlet"));
  offered.removeAll(QStringLiteral("-"));
  EXPECT_EQ(chosen, offered);
  appearance.setDark(true);
}

TEST(TrayStatusItemWithoutBusTest, ShowsNothing) {
  const FakeAppearance appearance;
  TrayStatusItem item(appearance, [] { return QDBusConnection(QStringLiteral("none")); });
  item.start();
  EXPECT_FALSE(item.isShown());
  EXPECT_EQ(item.area(), std::nullopt);
}

} // namespace notlet
