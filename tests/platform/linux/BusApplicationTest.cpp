#include "platform/linux/BusApplication.h"

#include <gmock/gmock.h>

#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QSignalSpy>
#include <QTest>
#include <random>
#include <thread>

#include "platform/linux/BusNames.h"
#include "support/PrivateBus.h"

namespace notlet {

namespace {

using Kind = LaunchRequest::Kind;
using namespace std::chrono_literals;

class BusApplicationTest : public testing::Test {
 protected:
  void SetUp() override {
    QObject::connect(&application, &BusApplication::requested, &application,
                     [this](const LaunchRequest& request) { requests.push_back(request); });
    application.start();
    ASSERT_TRUE(QTest::qWaitFor([this] { return owner() == bus().baseService(); }));
  }

  [[nodiscard]] QDBusConnection bus() const { return source(); }

  /// Whom the bus takes for Notlet.
  [[nodiscard]] QString owner() { return caller.interface()->serviceOwner(BusNames::service).value(); }

  /// What another program gets for a call.
  QDBusMessage call(const QString& method, const QVariantList& arguments,
                    const QString& path = BusNames::path) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(BusNames::service, path, BusNames::applicationInterface, method);
    message.setArguments(arguments);
    const QDBusPendingCallWatcher pending(caller.asyncCall(message));
    EXPECT_TRUE(QSignalSpy(&pending, &QDBusPendingCallWatcher::finished).wait());
    return pending.reply();
  }

  /// Hands over from another program while this one serves.
  bool handOver(const LaunchRequest& request, std::chrono::milliseconds timeout = 5s) {
    const BusSource other = [this] { return caller; };
    std::atomic<bool> done = false;
    bool result = false;
    std::thread thread([&] {
      result = BusApplication::handOver(request, timeout, other);
      done = true;
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return done.load(); }));
    thread.join();
    return result;
  }

  PrivateBus privateBus;
  BusSource source = privateBus.source();
  QDBusConnection caller = privateBus.connect();
  BusApplication application{source};
  std::vector<LaunchRequest> requests;
};

QVariantMap tokens(const QVariant& activation, const QVariant& startup) {
  QVariantMap platformData;
  if (activation.isValid())
    platformData[QStringLiteral("activation-token")] = activation;
  if (startup.isValid())
    platformData[QStringLiteral("desktop-startup-id")] = startup;
  return platformData;
}

} // namespace

TEST_F(BusApplicationTest, CallsBecomeRequests) {
  const QString megabyte = QStringLiteral("notlet:") + QString(1 << 20, QLatin1Char('x'));
  const QStringList urls = {QStringLiteral("notlet://a b"), QStringLiteral("http://example.org/ü"), megabyte,
                            QString()};
  const std::vector<std::string> sameUrls = {"notlet://a b", "http://example.org/ü", megabyte.toStdString(),
                                             ""};
  const QVariantMap both = tokens(QStringLiteral("new"), QStringLiteral("old"));
  const QVariantMap odd = tokens(QVariant::fromValue(QDBusObjectPath(QStringLiteral("/x"))),
                                 QVariant::fromValue(QVariantMap{{QStringLiteral("deep"), 1}}));
  const struct {
    QString method;
    QVariantList arguments;
    LaunchRequest expected;
  } calls[] = {
      {QStringLiteral("Activate"), {QVariantMap()}, {Kind::activate, {}, {}}},
      {QStringLiteral("Activate"), {both}, {Kind::activate, {}, "new"}},
      {QStringLiteral("Activate"), {tokens({}, QStringLiteral("old"))}, {Kind::activate, {}, "old"}},
      {QStringLiteral("Activate"), {tokens(QString(), QStringLiteral("old"))}, {Kind::activate, {}, "old"}},
      {QStringLiteral("Open"), {urls, odd}, {Kind::open, sameUrls, {}}},
      {QStringLiteral("Open"), {QStringList(), both}, {Kind::open, {}, "new"}},
      {QStringLiteral("ActivateAction"),
       {QStringLiteral("capture"), QVariantList{1, QStringLiteral("x")}, both},
       {Kind::capture, {}, "new"}},
  };
  for (const auto& [method, arguments, expected] : calls) {
    requests.clear();
    EXPECT_EQ(call(method, arguments).type(), QDBusMessage::ReplyMessage) << method.toStdString();
    EXPECT_THAT(requests, testing::ElementsAre(expected)) << method.toStdString();
  }
}

TEST_F(BusApplicationTest, CallsThatMakeNoSenseAreRefused) {
  const QVariantMap none;
  const struct {
    QString method;
    QVariantList arguments;
    QString path = BusNames::path;
  } calls[] = {
      {QStringLiteral("Activate"), {}},
      {QStringLiteral("Activate"), {QStringLiteral("text")}},
      {QStringLiteral("Activate"), {none, none}},
      {QStringLiteral("Open"), {QStringLiteral("notlet:"), none}},
      {QStringLiteral("Open"), {none, QStringList()}},
      {QStringLiteral("Open"), {QByteArray(1 << 20, '\0'), none}},
      {QStringLiteral("ActivateAction"), {QStringLiteral("quit"), QVariantList(), none}},
      {QStringLiteral("ActivateAction"), {QString(), QVariantList(), none}},
      {QStringLiteral("ActivateAction"), {42, QVariantList(), none}},
      {QStringLiteral("requested"), {none}},
      {QStringLiteral("deleteLater"), {}},
      {QStringLiteral("Activate"), {none}, QStringLiteral("/")},
      {QStringLiteral("Activate"), {none}, QStringLiteral("/org/notlet/Notlet/more")},
  };
  for (const auto& [method, arguments, path] : calls)
    EXPECT_EQ(call(method, arguments, path).type(), QDBusMessage::ErrorMessage)
        << method.toStdString() << " with " << arguments.size();
  EXPECT_TRUE(requests.empty());
}

TEST_F(BusApplicationTest, RandomCallsDoNoHarm) {
  std::mt19937 random(20261123);
  const auto any = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
  std::function<QVariant(int)> value = [&](int depth) -> QVariant {
    QString text;
    for (int length = any(20); length > 0; --length)
      text.append(QChar(0x20 + any(0xD000)));
    switch (any(depth > 0 ? 9 : 6)) {
    case 0:
      return any(1000);
    case 1:
      return text;
    case 2:
      return QByteArray(any(300), static_cast<char>(any(256)));
    case 3:
      return QStringList{text, text};
    case 4:
      return any(2) == 0;
    case 5:
      return QVariant::fromValue(QDBusObjectPath(QStringLiteral("/a/%1").arg(any(9))));
    case 6:
      return QVariant::fromValue(QDBusVariant(value(depth - 1)));
    case 7:
      return QVariantList{value(depth - 1), value(depth - 1)};
    default:
      return QVariantMap{{text, value(depth - 1)}, {QStringLiteral("activation-token"), value(depth - 1)}};
    }
  };
  const QStringList methods = {QStringLiteral("Activate"), QStringLiteral("Open"),
                               QStringLiteral("ActivateAction"), QStringLiteral("Other")};
  for (int round = 0; round < 500; ++round) {
    QVariantList arguments;
    for (int count = any(4); count > 0; --count)
      arguments.append(value(3));
    call(methods.at(any(4)), arguments);
  }
  requests.clear();
  call(QStringLiteral("Activate"), {QVariantMap()});
  EXPECT_THAT(requests, testing::ElementsAre(LaunchRequest{}));
}

TEST_F(BusApplicationTest, AnotherStartHandsOver) {
  const LaunchRequest sent[] = {
      {Kind::activate, {}, {}},
      {Kind::activate, {}, "token"},
      {Kind::capture, {}, "token"},
      {Kind::open, {"notlet:a", "notlet:" + std::string(1 << 20, 'x')}, {}},
  };
  for (const LaunchRequest& request : sent)
    EXPECT_TRUE(handOver(request));
  EXPECT_THAT(requests, testing::ElementsAreArray(sent));
}

TEST(BusHandOverTest, FailsWithoutSomebodyWhoAnswers) {
  PrivateBus privateBus({"org.notlet.Notlet"});
  const BusSource source = privateBus.source();
  EXPECT_FALSE(BusApplication::handOver({}, 5s, source)) << "nobody is started for it";
  QDBusConnection deaf = privateBus.connect();
  ASSERT_TRUE(deaf.registerService(BusNames::service));
  EXPECT_FALSE(BusApplication::handOver({}, 5s, source)) << "an owner that does not know the call";
  BusApplication application([&] { return deaf; });
  application.start();
  EXPECT_FALSE(BusApplication::handOver({}, 50ms, source)) << "an owner that hangs";
  privateBus.die();
  EXPECT_FALSE(BusApplication::handOver({}, 5s, source)) << "a bus that died";
  EXPECT_FALSE(BusApplication::handOver({}, 5s, [] { return QDBusConnection(QStringLiteral("none")); }));
}

// A program that cannot hand over runs beside the first one and follows it.
TEST_F(BusApplicationTest, TheNameGoesToTheNextInLine) {
  QDBusConnection nextBus = privateBus.connect();
  BusApplication next([&] { return nextBus; });
  next.start();
  bus().interface()->unregisterService(BusNames::service);
  EXPECT_TRUE(QTest::qWaitFor([&] { return owner() == nextBus.baseService(); }));
}

TEST_F(BusApplicationTest, TheBusMayDie) {
  privateBus.die();
  ASSERT_TRUE(QTest::qWaitFor([this] { return !bus().isConnected(); }));
  application.start();
  BusApplication later(source);
  later.start();
}

} // namespace notlet
