#include "platform/linux/SingleInstance.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include <QAbstractEventDispatcher>
#include <QEventLoop>
#include <QSignalSpy>
#include <QTest>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <future>
#include <random>
#include <thread>

#include "platform/InstanceSocket.h"
#include "platform/LaunchMessage.h"
#include "support/TemporaryDirectory.h"

namespace notlet {

namespace {

using Role = SingleInstance::Role;
using Kind = LaunchRequest::Kind;
using namespace std::chrono_literals;

/// What a test sends bytes through that no start would send; it never waits.
class RawPeer {
 public:
  explicit RawPeer(const std::filesystem::path& socket)
      : m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)), m_address(socket) {}

  bool dial() { return connect(m_socket.number(), m_address.data(), m_address.size()) == 0; }

  /// Sends as much as there is room for, and takes what came back.
  void exchange(std::string_view& bytes) {
    const ssize_t sent = send(m_socket.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(sent, 0)));
    std::array<char, 1000> portion{};
    const ssize_t count = recv(m_socket.number(), portion.data(), portion.size(), 0);
    if (count > 0)
      m_answer.append(portion.data(), static_cast<std::size_t>(count));
    else if (count == 0 || errno != EAGAIN)
      m_isHungUp = true;
  }

  /// Goes on until the other end hangs up.
  bool awaitEnd(std::string_view bytes = {}) {
    return QTest::qWaitFor([&] {
      exchange(bytes);
      return m_isHungUp;
    });
  }

  void finishSending() const { shutdown(m_socket.number(), SHUT_WR); }

  [[nodiscard]] const std::string& answer() const { return m_answer; }
  [[nodiscard]] bool isHungUp() const { return m_isHungUp; }

 private:
  Descriptor m_socket;
  SocketAddress m_address;
  std::string m_answer;
  bool m_isHungUp = false;
};

class SingleInstanceTest : public testing::Test {
 protected:
  /// Does something that waits, while this thread's events go on.
  template<typename Work>
  static auto meanwhile(Work work) {
    QEventLoop events;
    auto result = std::async(std::launch::async, [&] {
      auto done = work();
      QMetaObject::invokeMethod(&events, &QEventLoop::quit, Qt::QueuedConnection);
      return done;
    });
    events.exec();
    return result.get();
  }

  [[nodiscard]] Result<Role> startLater(const std::optional<LaunchRequest>& request) const {
    return startLater({place}, request);
  }
  [[nodiscard]] static Result<Role> startLater(const std::vector<std::filesystem::path>& places,
                                               const std::optional<LaunchRequest>& request) {
    return meanwhile([&] { return SingleInstance(places).start(request); });
  }

  static LaunchRequest requestIn(const QSignalSpy& spy, qsizetype index) {
    return spy.at(index).front().value<LaunchRequest>();
  }

  TemporaryDirectory directory;
  std::filesystem::path place = directory.path() / "run" / "notlet";
  std::filesystem::path socket = instanceSocket(place);
  LaunchRequest activation{Kind::activate, {}, ""};
};

} // namespace

TEST_F(SingleInstanceTest, LaterStartsHandOverWhatTheyAreAskedFor) {
  SingleInstance first({place});
  ASSERT_EQ(first.start(activation), Role::First);
  const QSignalSpy spy(&first, &SingleInstance::requested);
  const std::vector<LaunchRequest> requests{
      activation,
      {Kind::capture, {}, "token"},
      {Kind::open, {"notlet:a", "https://b"}, ""},
      {Kind::open, {"notlet:" + std::string(1'000'000, 'x')}, ""},
  };
  for (const LaunchRequest& request : requests) {
    EXPECT_EQ(startLater(request), Role::HandedOver);
    ASSERT_GT(spy.count(), 0);
    EXPECT_EQ(requestIn(spy, spy.count() - 1), request);
  }
  EXPECT_EQ(spy.count(), std::ssize(requests));
  EXPECT_EQ(startLater(std::nullopt), Role::HandedOver);
  EXPECT_EQ(spy.count(), std::ssize(requests));
}

TEST_F(SingleInstanceTest, AnEndedInstanceLeavesThePlaceToTheNext) {
  {
    SingleInstance first({place});
    ASSERT_EQ(first.start(activation), Role::First);
  }
  EXPECT_EQ(SingleInstance({place}).start(activation), Role::First);
}

// A crash leaves both files behind.
TEST_F(SingleInstanceTest, FilesWithoutAnInstanceAreNoInstance) {
  std::filesystem::create_directories(place);
  std::ofstream(place / "notlet.lock") << "";
  std::ofstream(place / "notlet.socket") << "";
  SingleInstance instance({place});
  EXPECT_EQ(instance.start(activation), Role::First);
  EXPECT_EQ(std::filesystem::status(place).permissions(), std::filesystem::perms::owner_all);
}

// Sessions see different places; what they share decides, and its path may be longer than an address.
TEST_F(SingleInstanceTest, IsTheOnlyOneInEachOfItsPlaces) {
  const std::filesystem::path drafts = directory.path() / std::string(200, 'x');
  const std::filesystem::path otherDrafts = directory.path() / "other";
  const std::filesystem::path otherSession = directory.path() / "run2";
  SingleInstance first({place, drafts});
  ASSERT_EQ(first.start(activation), Role::First);
  const QSignalSpy spy(&first, &SingleInstance::requested);
  for (const auto& places : std::vector<std::vector<std::filesystem::path>>{
           {drafts}, {otherSession, drafts}, {place, otherDrafts}, {place}}) {
    EXPECT_EQ(startLater(places, activation), Role::HandedOver);
    EXPECT_EQ(startLater(places, std::nullopt), Role::HandedOver);
  }
  EXPECT_EQ(spy.count(), 4);
  EXPECT_EQ(SingleInstance({otherSession, otherDrafts}).start(activation), Role::First);
}

TEST_F(SingleInstanceTest, PassesOverAPlaceThatCannotBeUsed) {
  std::ofstream(directory.path() / "file") << "";
  const std::filesystem::path unusable = directory.path() / "file" / "notlet";
  EXPECT_EQ(SingleInstance({unusable}).start(activation), Role::Unguarded);
  EXPECT_EQ(SingleInstance({}).start(activation), Role::Unguarded);
  SingleInstance first({unusable, place});
  EXPECT_EQ(first.start(activation), Role::First);
  EXPECT_EQ(startLater(activation), Role::HandedOver);
}

// On another computer with the same home folder, say.
TEST_F(SingleInstanceTest, LeavesOneAloneThatItCannotReach) {
  SingleInstance first({place});
  ASSERT_EQ(first.start(activation), Role::First);
  std::filesystem::remove(socket);
  const std::filesystem::path session = directory.path() / "run2";
  SingleInstance second({session, place}, {.withTheFirst = 50ms});
  const auto role = second.start(activation);
  ASSERT_FALSE(role);
  EXPECT_NE(role.error().message.find("cannot be reached"), std::string::npos);
  EXPECT_EQ(SingleInstance({session}).start(activation), Role::First) << "it holds nothing";
}

TEST_F(SingleInstanceTest, RefusesWhatIsNoRequestAndGoesOn) {
  SingleInstance first({place});
  ASSERT_EQ(first.start(activation), Role::First);
  const QSignalSpy spy(&first, &SingleInstance::requested);
  std::mt19937 random(4);
  std::string noise(5'000'000, '\0');
  std::ranges::generate(noise, [&] { return static_cast<char>(random()); });
  const std::vector<std::pair<std::string, std::string>> cases{
      {"x", "-The message is none"},
      {noise, "-The message is none"},
      {"NLT1\xff\xff\xff\xff" + noise, "-The links are too long"},
      {*encodeLaunchMessage(activation) + noise, "-The message is none"},
  };
  for (const auto& [bytes, answer] : cases) {
    RawPeer peer(socket);
    EXPECT_TRUE(peer.dial() && peer.awaitEnd(bytes));
    EXPECT_EQ(peer.answer().substr(0, answer.size()), answer);
    EXPECT_EQ(spy.count(), 0);
  }
  EXPECT_EQ(startLater(activation), Role::HandedOver);
}

TEST_F(SingleInstanceTest, ForgetsWhoHangsUpBeforeTheEnd) {
  SingleInstance first({place});
  ASSERT_EQ(first.start(activation), Role::First);
  const QSignalSpy spy(&first, &SingleInstance::requested);
  const std::string message = *encodeLaunchMessage({Kind::open, {"notlet:x"}, ""});
  for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{8}, message.size() - 1}) {
    RawPeer peer(socket);
    ASSERT_TRUE(peer.dial());
    std::string_view part(message.data(), length);
    peer.exchange(part);
    peer.finishSending();
    EXPECT_TRUE(peer.awaitEnd());
    EXPECT_EQ(peer.answer(), "");
  }
  EXPECT_EQ(spy.count(), 0);
}

TEST_F(SingleInstanceTest, DoesNotWaitForOneThatNeverFinishes) {
  SingleInstance first({place}, {.withPeers = 30ms});
  ASSERT_EQ(first.start(activation), Role::First);
  for (const std::string_view beginning : {std::string_view(), std::string_view("NLT1\0\0\1", 7)}) {
    RawPeer peer(socket);
    EXPECT_TRUE(peer.dial() && peer.awaitEnd(beginning));
    EXPECT_EQ(peer.answer(), "-The message did not arrive in time.");
  }
}

TEST_F(SingleInstanceTest, ManySilentPeersDoNotKeepAStartOut) {
  SingleInstance first({place}, {.withPeers = 1h});
  ASSERT_EQ(first.start(activation), Role::First);
  std::vector<std::unique_ptr<RawPeer>> silent;
  for (int count = 0; count < 100; ++count) {
    silent.push_back(std::make_unique<RawPeer>(socket));
    ASSERT_TRUE(silent.back()->dial());
  }
  EXPECT_EQ(startLater(activation), Role::HandedOver);
  std::string_view nothing;
  silent.front()->exchange(nothing);
  EXPECT_EQ(silent.front()->answer(), "-Too many others are starting Notlet at the same time.");
  silent.back()->exchange(nothing);
  EXPECT_FALSE(silent.back()->isHungUp());
}

TEST_F(SingleInstanceTest, ManyStartsAtOnceAreAllHeard) {
  constexpr int starts = 60;
  SingleInstance first({place});
  ASSERT_EQ(first.start(activation), Role::First);
  const QSignalSpy spy(&first, &SingleInstance::requested);
  const int accepted = meanwhile([&] {
    std::vector<std::future<Result<HandOver>>> results;
    for (int number = 0; number < starts; ++number)
      results.push_back(std::async(std::launch::async, [&, number] {
        return handOver({Kind::open, {"notlet:" + std::to_string(number)}, ""}, socket);
      }));
    return static_cast<int>(
        std::ranges::count_if(results, [](auto& result) { return result.get() == HandOver::accepted; }));
  });
  EXPECT_EQ(accepted, starts);
  std::set<std::string> links;
  for (qsizetype index = 0; index < spy.count(); ++index)
    links.insert(requestIn(spy, index).urls.front());
  EXPECT_EQ(links.size(), std::size_t{starts});
}

TEST_F(SingleInstanceTest, HearsNoOtherUser) {
  if (geteuid() != 0)
    GTEST_SKIP() << "Only root can be two users.";
  SingleInstance first({place});
  ASSERT_EQ(first.start(activation), Role::First);
  const QSignalSpy spy(&first, &SingleInstance::requested);
  for (const auto& path : {directory.path(), place.parent_path(), place, socket})
    std::filesystem::permissions(path, std::filesystem::perms::all);
  RawPeer peer(socket);
  // The bare call changes that one thread, not the process.
  EXPECT_TRUE(meanwhile([&] { return syscall(SYS_setresuid, -1, 65534, -1) == 0 && peer.dial(); }));
  EXPECT_TRUE(peer.awaitEnd(*encodeLaunchMessage(activation)));
  EXPECT_EQ(peer.answer(), "");
  EXPECT_EQ(spy.count(), 0);
}

// A connection that cannot be accepted stays readable; it must neither spin the program nor be lost.
TEST_F(SingleInstanceTest, WaitsQuietlyForAFreeDescriptor) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "The sanitizer itself needs free descriptors.";
#endif
  SingleInstance first({place});
  ASSERT_EQ(first.start(activation), Role::First);
  RawPeer peer(socket);
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  const int lowestFree = dup(0);
  close(lowestFree);
  const rlimit none{.rlim_cur = static_cast<rlim_t>(lowestFree), .rlim_max = limit.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const bool dialled = peer.dial();
  int wakes = 0;
  {
    const QObject counting;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &counting,
                     [&] { ++wakes; });
    QTest::qWait(100);
  }
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  EXPECT_TRUE(dialled);
  EXPECT_GT(wakes, 0);
  EXPECT_LT(wakes, 50);
  EXPECT_TRUE(peer.awaitEnd(*encodeLaunchMessage(activation)));
  EXPECT_EQ(peer.answer(), "+");
}

} // namespace notlet
