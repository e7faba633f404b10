#include <gmock/gmock.h>

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QLabel>
#include <QTest>

#include "platform/linux/BusNotifications.h"
#include "platform/linux/BusWidgetTimelines.h"
#include "support/PrivateBus.h"

namespace notlet {

namespace {

/// Takes what the program calls.
class FakeService final : public QDBusVirtualObject {
 public:
  [[nodiscard]] QString introspect(const QString&) const override { return {}; }

  bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
    messages.append(call);
    return true;
  }

  QList<QDBusMessage> messages;
};

const QString notifications = QStringLiteral("org.freedesktop.Notifications");

} // namespace

TEST(BusWidgetTimelinesTest, TellsTheKindAndNothingElse) {
  PrivateBus bus;
  QDBusConnection widget = bus.connect();
  QLabel seen;
  ASSERT_TRUE(widget.connect({}, QStringLiteral("/org/notlet/Notlet"), QStringLiteral("org.notlet.Notlet1"),
                             QStringLiteral("ReloadTimelines"), &seen, SLOT(setText(QString))));
  widget.interface()->registeredServiceNames(); // The bus has heard of the interest once it answers.
  BusWidgetTimelines timelines(bus.source());
  timelines.reload("NotletMacQuickCapture");
  EXPECT_TRUE(QTest::qWaitFor([&] { return seen.text() == QStringLiteral("NotletMacQuickCapture"); }));
  bus.die();
  timelines.reload("NotletMacQuickCapture");
}

TEST(BusNotificationsTest, ShowsWhatTheServiceMustNotTakeForMarkup) {
  PrivateBus bus;
  QDBusConnection desktop = bus.connect();
  FakeService service;
  desktop.registerVirtualObject(QStringLiteral("/org/freedesktop/Notifications"), &service);
  ASSERT_TRUE(desktop.registerService(notifications));
  EXPECT_TRUE(
      BusNotifications(bus.source()).show(QStringLiteral("Notlet <&"), QStringLiteral("a <b> & “c”")));
  ASSERT_TRUE(QTest::qWaitFor([&] { return !service.messages.isEmpty(); }));
  EXPECT_EQ(service.messages.at(0).signature(), QStringLiteral("susssasa{sv}i"));
  EXPECT_EQ(service.messages.at(0).arguments().mid(3, 2),
            (QVariantList{QStringLiteral("Notlet <&"), QStringLiteral("a &lt;b&gt; &amp; “c”")}));
}

TEST(BusNotificationsTest, SaysWhenNobodyWouldShowThem) {
  PrivateBus bus;
  PrivateBus busThatStarts({notifications.toStdString()});
  const BusSource source = bus.source();
  const BusSource sourceThatStarts = busThatStarts.source();
  EXPECT_FALSE(BusNotifications(source).show(QStringLiteral("a"), QStringLiteral("b")));
  EXPECT_TRUE(BusNotifications(sourceThatStarts).show(QStringLiteral("a"), QStringLiteral("b")));
  busThatStarts.die();
  EXPECT_FALSE(BusNotifications(sourceThatStarts).show(QStringLiteral("a"), QStringLiteral("b")));
}

} // namespace notlet
