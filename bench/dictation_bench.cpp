// What dictation costs, and how well it understands ten sentences of a synthetic voice. They are spoken at
// the pace of real sound into the composer, in a window that nobody sees; everything but the microphone is
// real.
//
// usage: dictation_bench DIRECTORY_OF_THE_PROGRAM
// Prints lines of three columns, parted by tabs: what, how much, and what else there is to say.

#include <time.h>

#include <QApplication>
#include <QEventLoop>
#include <QTimer>
#include <array>
#include <cstdio>
#include <fstream>
#include <numeric>
#include <semaphore>
#include <sstream>

#include "PlayedMicrophone.h"
#include "capture/ui/MacNotletView.h"
#include "platform/speech/InstalledSpeech.h"
#include "platform/speech/SynthesizedSpeech.h"
#include "storage/NotletDatabase.h"
#include "support/FakeScheduler.h"
#include "support/TemporaryDirectory.h"

namespace notlet {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::array sentences = {
    "call anna tomorrow about the printer",
    "remember to pay the electricity bill before friday",
    "buy milk bread and eggs on the way home",
    "send the report to the office on monday morning",
    "the meeting starts at ten in the small room",
    "water the plants and feed the cat",
    "ask the doctor for a new appointment",
    "book two train tickets to london for the weekend",
    "idea for the garden build a bench under the tree",
    "return the books to the library next week",
};
/// After a sentence, for its last reading.
constexpr auto breath = 2500ms;

double inMilliseconds(Clock::duration time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

template<typename... Figures>
void tell(const char* format, Figures... figures) {
  std::printf(format, figures...);
  std::fflush(stdout);
}

/// Lets the program live for a while.
void wait(std::chrono::milliseconds time) {
  QEventLoop loop;
  QTimer::singleShot(time, &loop, &QEventLoop::quit);
  loop.exec();
}

template<typename Holds>
void waitUntil(Holds holds) {
  const auto deadline = Clock::now() + 60s;
  while (!holds()) {
    if (Clock::now() > deadline)
      throw std::runtime_error("dictation does not get on");
    wait(5ms);
  }
}

std::vector<std::string> wordsOf(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

/// How many words must be changed, left out or put in to make one of the other.
std::size_t wordErrors(const std::vector<std::string>& said, const std::vector<std::string>& heard) {
  std::vector<std::size_t> row(heard.size() + 1);
  std::iota(row.begin(), row.end(), 0U);
  for (std::size_t line = 0; line < said.size(); ++line) {
    std::size_t diagonal = std::exchange(row[0], line + 1);
    for (std::size_t column = 0; column < heard.size(); ++column) {
      const std::size_t replaced = diagonal + (said[line] != heard[column] ? 1U : 0U);
      diagonal = row[column + 1];
      row[column + 1] = std::min({replaced, row[column] + 1, row[column + 1] + 1});
    }
  }
  return row.back();
}

/// Megabytes of this process: all that are in memory, and of these what is not from files.
struct Memory {
  double resident = 0;
  double own = 0;

  static Memory now() {
    Memory memory;
    std::ifstream file("/proc/self/smaps_rollup");
    for (std::string line; std::getline(file, line);) {
      std::istringstream words(line);
      std::string name;
      double kilobytes = 0;
      words >> name >> kilobytes;
      if (name == "Rss:")
        memory.resident = kilobytes / 1024;
      else if (name == "Anonymous:")
        memory.own = kilobytes / 1024;
    }
    return memory;
  }
  void tellAs(const char* when) const {
    tell("memory %s\t%.0f MB\tof it not from files %.0f MB\n", when, resident, own);
  }
};

/// The engine in the installed library, with its loading timed.
class TimedEngine final : public SpeechEngine {
 public:
  struct Life {
    std::atomic<double> loadMilliseconds = 0;
    std::atomic<bool> isLoaded = false;
  };
  TimedEngine(std::unique_ptr<SpeechEngine> engine, Life& life) : m_engine(std::move(engine)), m_life(life) {}
  ~TimedEngine() override {
    m_engine.reset();
    m_life.isLoaded = false;
  }

  Result<void> load() override {
    const auto before = Clock::now();
    auto loaded = m_engine->load();
    m_life.loadMilliseconds = inMilliseconds(Clock::now() - before);
    m_life.isLoaded = true;
    return loaded;
  }
  Result<void> begin() override { return m_engine->begin(); }
  Result<std::string> accept(AudioFrames frames) override { return m_engine->accept(frames); }
  Result<std::string> finish() override { return m_engine->finish(); }
  void abandon() override { m_engine->abandon(); }

 private:
  std::unique_ptr<SpeechEngine> m_engine;
  Life& m_life;
};

class Backend final : public SpeechBackend {
 public:
  explicit Backend(const char* programs) : m_installed(Places(), InstalledSpeech::libraryOf(programs)) {}

  [[nodiscard]] Result<std::optional<SpeechModel>> modelFor(const std::string& language) const override {
    return m_installed.modelFor(language);
  }
  [[nodiscard]] Result<std::unique_ptr<AudioInput>> makeAudioInput() override {
    return std::make_unique<PlayedMicrophone>(voice);
  }
  [[nodiscard]] Result<std::unique_ptr<SpeechEngine>> makeEngine(const SpeechModel& model) override {
    auto engine = m_installed.makeEngine(model);
    if (!engine)
      return engine;
    return std::make_unique<TimedEngine>(std::move(*engine), engineLife);
  }

  Voice voice;
  TimedEngine::Life engineLife;

 private:
  InstalledSpeech m_installed;
};

/// Measures how long a call to the main thread waits for its turn, one call after the other.
class StallWatch {
 public:
  StallWatch() : m_thread([this](const std::stop_token& stop) { watch(stop); }) {}
  ~StallWatch() {
    m_thread.request_stop();
    m_answered.release(); // The call in flight may never be taken.
  }

  [[nodiscard]] std::vector<double> takeMilliseconds() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_waits, {});
  }

 private:
  void watch(const std::stop_token& stop) {
    while (!stop.stop_requested()) {
      const auto before = Clock::now();
      QMetaObject::invokeMethod(
          &m_receiver,
          [this, before] {
            const std::lock_guard lock(m_mutex);
            m_waits.push_back(inMilliseconds(Clock::now() - before));
            m_answered.release();
          },
          Qt::QueuedConnection);
      m_answered.acquire();
      std::this_thread::sleep_for(1ms);
    }
  }

  std::mutex m_mutex;
  std::vector<double> m_waits;
  std::counting_semaphore<2> m_answered{0};
  QObject m_receiver;
  std::jthread m_thread;
};

std::unique_ptr<NotletDatabase> openStore(const TemporaryDirectory& directory) {
  auto database = NotletDatabase::open(directory.path() / "Notlet.store", Access::ReadWrite);
  if (!database)
    throw std::runtime_error(database.error().message);
  return std::move(*database);
}

double median(std::vector<double> figures) {
  std::ranges::sort(figures);
  const std::size_t middle = figures.size() / 2;
  return figures.size() % 2 == 1 ? figures[middle] : (figures[middle - 1] + figures[middle]) / 2;
}

/// The composer in its window, with somebody speaking.
class Dictations {
 public:
  explicit Dictations(Backend& backend) : m_backend(backend) {
    QObject::connect(&m_composer, &CaptureComposer::changed, &m_composer, [this] {
      if (m_composer.inputRevision() != std::exchange(m_shownRevision, m_composer.inputRevision()))
        m_lastChange = Clock::now();
    });
    m_view.resize(840, 600);
    m_view.show();
    wait(500ms);
  }

  /// The first press, until there is something to speak to.
  void load() {
    start();
    waitUntil([this] { return m_backend.engineLife.isLoaded.load(); });
    tell("engine loaded, files in the cache\t%.0f ms\tmeanwhile the sound waits\n",
         m_backend.engineLife.loadMilliseconds.load());
    stop();
  }
  void dictate(const char* sentence, const Voice::Piece& sound) {
    start();
    wait(200ms);
    m_backend.voice.say(sound);
    waitUntil([this] { return m_backend.voice.end().has_value(); });
    wait(breath);
    m_delays.push_back(std::max(0.0, inMilliseconds(m_lastChange - *m_backend.voice.end())));
    const auto said = wordsOf(sentence);
    m_wordsSaid += said.size();
    m_wordErrors += wordErrors(said, wordsOf(m_composer.state().input));
    std::fprintf(stderr, "%5.0f ms  %s\n", m_delays.back(), m_composer.state().input.c_str());
    stop();
  }
  void tellFigures() const {
    tell("words understood\t%.1f %%\t%zu errors in %zu words\n",
         100 * (1 - static_cast<double>(m_wordErrors) / static_cast<double>(m_wordsSaid)), m_wordErrors,
         m_wordsSaid);
    tell("from the end of speech to the last change of the text\t%.0f ms\tmedian; most %.0f ms\n",
         median(m_delays), std::ranges::max(m_delays));
  }
  void letTheEngineGo() {
    m_idle.advance(SpeechService::idleTime);
    waitUntil([this] { return !m_backend.engineLife.isLoaded; });
    wait(500ms);
  }

 private:
  void start() {
    m_composer.handleMicTap();
    waitUntil([this] { return m_composer.state().dictation == CaptureComposer::Dictation::recording; });
  }
  void stop() {
    m_composer.stopDictation();
    m_composer.setInput({});
    wait(200ms);
  }

  Backend& m_backend;
  TemporaryDirectory m_directory;
  ModelContext m_context{openStore(m_directory)};
  NotificationCenter m_center;
  SystemClock m_clock;
  TimerScheduler m_scheduler;
  FakeScheduler m_idle;
  DraftKeeper m_drafts{m_directory.path() / "drafts", "main-window", m_scheduler};
  SpeechService m_service{m_backend, m_idle};
  CaptureComposer m_composer{
      {m_context, m_center, m_clock, m_scheduler, m_drafts, nullptr, &m_service, {"en-US"}}};
  MacNotletView m_view{m_composer};

  Clock::time_point m_lastChange;
  std::uint64_t m_shownRevision = 0;
  std::vector<double> m_delays;
  std::size_t m_wordsSaid = 0;
  std::size_t m_wordErrors = 0;
};

double processorSeconds() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// Processor time of the engine for each second of speech, without the silence around it.
void measureEngine(Backend& backend, const std::vector<Voice::Piece>& sounds) {
  auto engine = backend.makeEngine(**backend.modelFor("en-US"));
  if (!engine || !(*engine)->load())
    throw std::runtime_error("the engine does not load");
  double processor = 0;
  double seconds = 0;
  for (const Voice::Piece& sound : sounds) {
    const double before = processorSeconds();
    bool isWell = (*engine)->begin().has_value();
    for (std::size_t begin = 0; begin < sound.size(); begin += AudioInput::chunkFrames)
      isWell = isWell && (*engine)->accept(std::span(sound).subspan(
                             begin, std::min(AudioInput::chunkFrames, sound.size() - begin)));
    isWell = isWell && (*engine)->finish();
    if (!isWell)
      throw std::runtime_error("the engine fails");
    processor += processorSeconds() - before;
    seconds += static_cast<double>(sound.size()) / AudioInput::sampleRate;
  }
  tell("real-time factor\t%.2f\tof one core, with the last pass; %.0f s of speech\n", processor / seconds,
       seconds);
}

void measure(const char* programs) {
  std::vector<Voice::Piece> sounds;
  std::ranges::transform(sentences, std::back_inserter(sounds), spokenWithoutPause);
  Backend backend(programs);
  {
    Dictations dictations(backend);
    Memory::now().tellAs("before the first press");
    StallWatch watch;
    dictations.load();
    const double whileLoading = std::ranges::max(watch.takeMilliseconds());
    for (std::size_t number = 0; number < sentences.size(); ++number)
      dictations.dictate(sentences.at(number), sounds[number]);
    const auto waits = watch.takeMilliseconds();
    dictations.tellFigures();
    tell("longest stall of the main thread\t%.1f ms\t%td of %zu over 16 ms; while the engine loads %.1f ms\n",
         std::ranges::max(waits), std::ranges::count_if(waits, [](double time) { return time > 16; }),
         waits.size(), whileLoading);
    Memory::now().tellAs("with the engine loaded");
    dictations.letTheEngineGo();
    Memory::now().tellAs("after ten idle minutes");
  }
  measureEngine(backend, sounds);
}

} // namespace
} // namespace notlet

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  if (argc != 2) {
    std::fputs("usage: dictation_bench DIRECTORY_OF_THE_PROGRAM\n", stderr);
    return 2;
  }
  notlet::measure(argv[1]);
  return 0;
}
