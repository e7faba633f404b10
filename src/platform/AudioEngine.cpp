#include "platform/AudioEngine.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <optional>

#include "platform/JobThread.h"
#include "platform/MainThreadMail.h"
#include "platform/SpeechBackend.h"

namespace notlet {

namespace {

/// Frames between two levels, a twenty-fifth of a second.
constexpr std::size_t levelFrames = AudioInput::sampleRate / 25;
/// What counts as nothing and as everything, in decibels of full scale.
constexpr double quiet = -55;
constexpr double loud = -5;

/// Averages the sound between two levels.
class LevelMeter {
 public:
  /// The level, when enough has been heard for one.
  std::optional<double> hear(AudioFrames frames) {
    for (const double frame : frames)
      m_energy += frame * frame;
    m_count += frames.size();
    if (m_count < levelFrames)
      return std::nullopt;
    constexpr double fullScale = 32768.0 * 32768.0;
    const double decibels = 10 * std::log10(m_energy / (fullScale * static_cast<double>(m_count)) + 1e-12);
    m_energy = 0;
    m_count = 0;
    return std::clamp((decibels - quiet) / (loud - quiet), 0.0, 1.0);
  }

 private:
  double m_energy = 0;
  std::size_t m_count = 0;
};

} // namespace

/// One use of the microphone, which both threads hold until neither needs it.
class AudioEngine::Session final : public MainThreadMail::Sender,
                                   public std::enable_shared_from_this<Session> {
 public:
  Session(SpeechBackend& backend, MainThreadMail& mail, Tap tap)
      : m_backend(backend), m_mail(mail), m_tap(std::move(tap)) {}

  // Those that only the main thread calls.
  void setEvents(Events events) { m_events = std::move(events); }
  void setAnswer(Answer answer) { m_answer = std::move(answer); }
  void removeTap() {
    const std::lock_guard lock(m_mutex);
    m_tap = nullptr;
  }
  void stop() {
    const std::lock_guard lock(m_mutex);
    m_isStopped = true;
    if (m_input)
      m_input->stop();
    m_events = {};
    m_answer = nullptr;
  }
  void deliver() override;

  // Those that only the audio thread calls.
  void listen();
  void probe();

  // Instead of one of the two.
  void fail(const AudioError& error);

 private:
  [[nodiscard]] std::expected<void, AudioError>
  use(const std::function<std::expected<void, AudioError>(AudioInput&)>& use);
  void hear(AudioFrames frames);
  template<typename Change>
  void post(Change change);

  SpeechBackend& m_backend;
  MainThreadMail& m_mail;
  LevelMeter m_meter; // Of the audio thread.
  Events m_events;    // Of the main thread, like the next.
  Answer m_answer;

  struct News {
    bool hasStarted = false;
    std::optional<double> level;
    std::optional<std::expected<void, AudioError>> outcome;
  };

  std::mutex m_mutex;
  Tap m_tap;
  AudioInput* m_input = nullptr;
  bool m_isStopped = false;
  bool m_isPosted = false;
  News m_news;
};

template<typename Change>
void AudioEngine::Session::post(Change change) {
  {
    const std::lock_guard lock(m_mutex);
    if (m_isStopped)
      return;
    change(m_news);
    if (std::exchange(m_isPosted, true))
      return;
  }
  m_mail.post(weak_from_this());
}

std::expected<void, AudioError>
AudioEngine::Session::use(const std::function<std::expected<void, AudioError>(AudioInput&)>& use) {
  const auto input = m_backend.makeAudioInput();
  if (!input)
    return std::unexpected(AudioError{AudioFault::notInstalled, input.error().message});
  {
    const std::lock_guard lock(m_mutex);
    if (m_isStopped)
      return {};
    m_input = input->get();
  }
  auto outcome = use(**input);
  const std::lock_guard lock(m_mutex);
  m_input = nullptr;
  return outcome;
}

void AudioEngine::Session::listen() {
  const AudioInput::Listener listener{
      .started = [this] { post([](News& news) { news.hasStarted = true; }); },
      .heard = [this](AudioFrames frames) { hear(frames); },
  };
  auto outcome = use([&](AudioInput& input) { return input.listen(listener); });
  post([&](News& news) { news.outcome = std::move(outcome); });
}

void AudioEngine::Session::probe() {
  auto outcome = use([](AudioInput& input) { return input.probe(); });
  post([&](News& news) { news.outcome = std::move(outcome); });
}

void AudioEngine::Session::fail(const AudioError& error) {
  post([&](News& news) { news.outcome = std::unexpected(error); });
}

void AudioEngine::Session::hear(AudioFrames frames) {
  {
    const std::lock_guard lock(m_mutex);
    if (m_isStopped)
      return;
    if (m_tap)
      m_tap(frames);
  }
  if (const auto level = m_meter.hear(frames))
    post([&](News& news) { news.level = level; });
}

void AudioEngine::Session::deliver() {
  News news;
  {
    const std::lock_guard lock(m_mutex);
    m_isPosted = false;
    std::swap(news, m_news);
  }
  // Copies, because whoever is told may stop the engine; that empties the originals.
  if (const auto started = m_events.started; started && news.hasStarted)
    started();
  if (const auto levelChanged = m_events.levelChanged; levelChanged && news.level)
    levelChanged(*news.level);
  if (const auto failed = m_events.failed; failed && news.outcome && !*news.outcome)
    failed(describe(news.outcome->error()));
  if (const auto ended = m_events.ended; ended && news.outcome && *news.outcome)
    ended();
  if (const auto answer = m_answer; answer && news.outcome)
    answer(*news.outcome);
}

AudioEngine::AudioEngine(SpeechBackend& backend, JobThread& audioThread, MainThreadMail& mail)
    : m_backend(backend), m_audioThread(audioThread), m_mail(mail) {
}

AudioEngine::~AudioEngine() {
  stop();
}

void AudioEngine::installTap(Tap tap) {
  m_tap = std::move(tap);
}

void AudioEngine::removeTap() {
  m_tap = nullptr;
  if (m_session)
    m_session->removeTap();
}

void AudioEngine::start(Events events) {
  stop();
  m_session = std::make_shared<Session>(m_backend, m_mail, m_tap);
  m_session->setEvents(std::move(events));
  run(&Session::listen);
}

void AudioEngine::probe(Answer answer) {
  stop();
  m_session = std::make_shared<Session>(m_backend, m_mail, nullptr);
  m_session->setAnswer(std::move(answer));
  run(&Session::probe);
}

void AudioEngine::run(void (Session::*job)()) {
  if (const auto begun = m_audioThread.run([session = m_session, job] { (*session.*job)(); }); !begun)
    m_session->fail({AudioFault::notStarted, begun.error().message});
}

void AudioEngine::stop() {
  if (const auto session = std::exchange(m_session, nullptr))
    session->stop();
}

} // namespace notlet
