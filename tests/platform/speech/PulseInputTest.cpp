#include "platform/speech/PulseInput.h"

#include <gmock/gmock.h>
#include <pulse/def.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <future>
#include <thread>

#include "support/PrivateSoundService.h"

namespace notlet {
namespace {

using namespace std::chrono_literals;
using testing::Each;
using testing::SizeIs;
using Outcome = std::expected<void, AudioError>;

std::optional<AudioFault> faultOf(const Outcome& outcome) {
  return outcome ? std::nullopt : std::optional(outcome.error().fault);
}

/// Listens on a thread of its own.
class Listening {
 public:
  explicit Listening(const PulseInput::Patience& patience = {10s, 10s}) : m_input(patience) {
    m_thread = std::jthread([this] {
      m_outcome.set_value(m_input.listen({.started = [this] { m_started.set_value(); },
                                          .heard = [this](AudioFrames frames) { hear(frames); }}));
    });
  }
  ~Listening() { m_input.stop(); }

  void waitUntilStarted() { EXPECT_EQ(m_startedFuture.wait_for(10s), std::future_status::ready); }
  [[nodiscard]] bool hasStarted() { return m_startedFuture.wait_for(0s) == std::future_status::ready; }
  /// The pieces heard so far, once there are this many.
  [[nodiscard]] std::vector<std::vector<std::int16_t>> waitForPieces(std::size_t count) {
    std::unique_lock lock(m_mutex);
    m_hasHeard.wait_for(lock, 10s, [&] { return m_pieces.size() >= count; });
    return m_pieces;
  }
  [[nodiscard]] Outcome end() {
    auto future = m_outcome.get_future();
    EXPECT_EQ(future.wait_for(10s), std::future_status::ready);
    m_input.stop();
    return future.get();
  }
  void stop() { m_input.stop(); }

 private:
  void hear(AudioFrames frames) {
    const std::lock_guard lock(m_mutex);
    m_pieces.emplace_back(frames.begin(), frames.end());
    m_hasHeard.notify_all();
  }

  PulseInput m_input;
  std::promise<void> m_started;
  std::future<void> m_startedFuture = m_started.get_future();
  std::promise<Outcome> m_outcome;
  std::mutex m_mutex;
  std::condition_variable m_hasHeard;
  std::vector<std::vector<std::int16_t>> m_pieces;
  std::jthread m_thread;
};

void speak(const PrivateSoundService& service, std::size_t frames) {
  std::vector<std::int16_t> sound(frames);
  for (std::size_t frame = 0; frame < frames; ++frame)
    sound[frame] = static_cast<std::int16_t>(frame);
  std::ofstream(service.speakInto(), std::ios::binary)
      .write(reinterpret_cast<const char*>(sound.data()),
             static_cast<std::streamsize>(sound.size() * sizeof(std::int16_t)));
}

TEST(PulseInputTest, HearsWhatIsSaidInPiecesOfOneSize) {
  PrivateSoundService service;
  service.plugMicrophone();
  EXPECT_TRUE(PulseInput().probe());
  Listening listening;
  listening.waitUntilStarted();
  speak(service, 3 * AudioInput::chunkFrames);
  const auto pieces = listening.waitForPieces(2);
  ASSERT_GE(pieces.size(), 2U);
  EXPECT_THAT(pieces, Each(SizeIs(AudioInput::chunkFrames)));
  EXPECT_EQ(pieces[1][0], pieces[0].back() + 1) << "nothing is lost between two pieces";
  listening.stop();
  EXPECT_TRUE(listening.end());
}

TEST(PulseInputTest, StopsAtOnceWheneverItIsTold) {
  PrivateSoundService service;
  service.plugMicrophone();
  PulseInput never({10s, 10s});
  never.stop();
  EXPECT_TRUE(never.listen({.started = [] { FAIL(); }, .heard = {}})) << "before it began";
  Listening silent;
  silent.waitUntilStarted();
  silent.stop();
  EXPECT_TRUE(silent.end()) << "with nothing to hear";
}

TEST(PulseInputTest, TellsWhyThereIsNothingToHear) {
  PrivateSoundService service;
  EXPECT_EQ(faultOf(PulseInput().probe()), AudioFault::noMicrophone) << "nothing plugged in";
  EXPECT_EQ(faultOf(Listening().end()), AudioFault::noMicrophone) << "nothing plugged in";
  service.plugLoudspeakers();
  EXPECT_EQ(faultOf(PulseInput().probe()), AudioFault::noMicrophone) << "only loudspeakers";
  Listening toLoudspeakers;
  EXPECT_EQ(faultOf(toLoudspeakers.end()), AudioFault::noMicrophone) << "only loudspeakers";
  EXPECT_FALSE(toLoudspeakers.hasStarted());

  service.plugMicrophone();
  Listening deaf({10s, 200ms});
  EXPECT_EQ(faultOf(deaf.end()), AudioFault::noFrames);
  EXPECT_TRUE(deaf.hasStarted());

  service.die();
  EXPECT_EQ(faultOf(PulseInput().probe()), AudioFault::noService);
  EXPECT_EQ(faultOf(Listening().end()), AudioFault::noService);
}

TEST(PulseInputTest, MicrophoneThatGoesAwayIsLost) {
  PrivateSoundService service;
  const std::string first = service.plugMicrophone();
  Listening alone;
  alone.waitUntilStarted();
  service.unplug(first);
  EXPECT_EQ(faultOf(alone.end()), AudioFault::lost) << "nothing is left";

  service.plugLoudspeakers();
  const std::string second = service.plugMicrophone();
  Listening besideLoudspeakers;
  besideLoudspeakers.waitUntilStarted();
  service.unplug(second);
  EXPECT_EQ(faultOf(besideLoudspeakers.end()), AudioFault::lost) << "the loudspeakers are left";
  EXPECT_TRUE(besideLoudspeakers.waitForPieces(0).empty()) << "their sound is none of the user's";

  service.plugMicrophone();
  Listening untilTheEnd;
  untilTheEnd.waitUntilStarted();
  service.die();
  EXPECT_EQ(faultOf(untilTheEnd.end()), AudioFault::lost) << "the service went away";
}

/// A sound service that answers the first message of each caller with an error, or not at all.
class RefusingService {
 public:
  explicit RefusingService(std::optional<int> answer)
      : m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    if (!m_socket.isOpen())
      throw std::runtime_error("no socket");
    const std::string path = m_directory.path() / "native";
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(::bind(m_socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(m_socket.number(), 5), 0);
    qputenv("PULSE_SERVER", QByteArray::fromStdString("unix:" + path));
    if (answer)
      m_thread = std::jthread([this, code = *answer] { refuse(code); });
  }
  ~RefusingService() { ::shutdown(m_socket.number(), SHUT_RDWR); }

 private:
  void refuse(int code) const {
    const Descriptor caller(::accept(m_socket.number(), nullptr, nullptr));
    if (!caller.isOpen())
      return;
    // Twenty bytes of envelope, then 'L' and the command, 'L' and its number, which the answer repeats.
    std::array<unsigned char, 30> request{};
    EXPECT_EQ(::recv(caller.number(), request.data(), request.size(), MSG_WAITALL), 30);
    std::array<unsigned char, 35> answer{0, 0, 0, 15, 0xff, 0xff, 0xff, 0xff};
    answer[20] = answer[25] = answer[30] = 'L';
    std::copy_n(request.begin() + 26, 4, answer.begin() + 26);
    answer[34] = static_cast<unsigned char>(code);
    EXPECT_EQ(::send(caller.number(), answer.data(), answer.size(), MSG_NOSIGNAL), 35);
    std::array<char, 256> rest{};
    while (::recv(caller.number(), rest.data(), rest.size(), 0) > 0) {
    }
  }

  TemporaryDirectory m_directory;
  Descriptor m_socket;
  std::jthread m_thread;
};

TEST(PulseInputTest, TellsHowTheServiceRefuses) {
  const struct {
    std::optional<int> answer;
    AudioFault fault;
  } cases[] = {
      {PA_ERR_ACCESS, AudioFault::accessDenied},
      {PA_ERR_AUTHKEY, AudioFault::noService},
      {PA_ERR_BUSY, AudioFault::busy},
      {std::nullopt, AudioFault::noAnswer},
  };
  for (const auto& [answer, fault] : cases) {
    const RefusingService service(answer);
    const PulseInput::Patience patience{answer ? 10s : 100ms, 10s};
    EXPECT_EQ(faultOf(PulseInput(patience).probe()), fault) << answer.value_or(-1);
  }
}

} // namespace
} // namespace notlet
