#include "capture/SpeechRecognizer.h"

#include <gmock/gmock.h>

#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include "support/FakeScheduler.h"
#include "support/FakeSpeechBackend.h"
#include "support/NoThreads.h"

namespace notlet {
namespace {

using Script = FakeSpeechBackend::Script;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* unavailable = "Speech recognition is currently unavailable. Try again later.";

/// A composer's side of a dictation: what it was told.
struct Composer {
  std::vector<std::string> heard;
  std::vector<std::string> outcomes;
  bool wasOnMainThread = true;
  std::function<void()> onHeard = [] {};

  void start(SpeechRecognizer& recognizer) {
    recognizer.startRecording(
        [this](const std::string& transcript) {
          wasOnMainThread =
              wasOnMainThread && QThread::currentThread() == QCoreApplication::instance()->thread();
          heard.push_back(transcript);
          onHeard();
        },
        [this](const Result<void>& outcome) {
          outcomes.push_back(outcome ? "recording" : outcome.error().message);
        });
  }
};

class SpeechRecognizerTest : public testing::Test {
 protected:
  SpeechRecognizerTest() { follow(*recognizer); }
  ~SpeechRecognizerTest() override {
    backend.with([](Script& script) { script.holdsLoad = script.holdsStart = false; });
  }

  void follow(SpeechRecognizer& followed) {
    QObject::connect(&followed, &SpeechRecognizer::failed, &followed,
                     [this](const Error& error) { failures.push_back(error.message); });
  }
  void startAndWait() {
    composer.start(*recognizer);
    ASSERT_TRUE(QTest::qWaitFor([&] { return recognizer->isRecording(); }));
  }
  void sayAndWaitFor(const std::string& transcript) {
    backend.say(1);
    ASSERT_TRUE(QTest::qWaitFor([&] {
      return !composer.heard.empty() && composer.heard.back() == transcript;
    })) << transcript;
  }
  [[nodiscard]] bool waitFor(const std::function<bool(const Script&)>& holds) {
    return QTest::qWaitFor([&] { return backend.with([&](const Script& script) { return holds(script); }); });
  }
  /// As above, while the main thread takes no calls.
  [[nodiscard]] bool standStillUntil(const std::function<bool(const Script&)>& holds) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!backend.with([&](const Script& script) { return holds(script); })) {
      if (std::chrono::steady_clock::now() > deadline)
        return false;
      std::this_thread::yield();
    }
    return true;
  }

  FakeSpeechBackend backend;
  FakeScheduler scheduler;
  Composer composer;
  std::vector<std::string> failures;
  SpeechService service{backend, scheduler};
  std::unique_ptr<SpeechRecognizer> recognizer =
      std::make_unique<SpeechRecognizer>(&service, std::vector<std::string>{"en-GB"});
};

TEST_F(SpeechRecognizerTest, TellsEachReadingUntilItIsStopped) {
  EXPECT_FALSE(recognizer->isRecording());
  const QSignalSpy levels(recognizer.get(), &SpeechRecognizer::levelChanged);
  startAndWait();
  EXPECT_THAT(composer.outcomes, ElementsAre("recording"));
  sayAndWaitFor("and");
  sayAndWaitFor("and eggs");
  EXPECT_THAT(composer.heard, ElementsAre("and", "and eggs"));
  EXPECT_TRUE(composer.wasOnMainThread);
  ASSERT_FALSE(levels.isEmpty());
  EXPECT_NEAR(levels.last().first().toDouble(), 0.5, 0.1);

  recognizer->stopRecording();
  recognizer->stopRecording();
  EXPECT_FALSE(recognizer->isRecording());
  EXPECT_TRUE(waitFor([](const Script& script) { return script.closed == 1 && script.abandons == 1; }));
  EXPECT_THAT(failures, IsEmpty());
}

TEST_F(SpeechRecognizerTest, DropsWhatIsOnItsWayWhenItIsStopped) {
  const QSignalSpy levels(recognizer.get(), &SpeechRecognizer::levelChanged);
  startAndWait();
  backend.say(2);
  ASSERT_TRUE(
      standStillUntil([](const Script& script) { return script.said.empty() && script.begins == 1; }));
  recognizer->stopRecording();
  EXPECT_TRUE(waitFor([](const Script& script) { return script.abandons == 1 && script.closed == 1; }));
  QCoreApplication::processEvents();
  EXPECT_THAT(composer.heard, IsEmpty());
  EXPECT_TRUE(levels.isEmpty());

  startAndWait();
  sayAndWaitFor("and");
  EXPECT_EQ(backend.with([](const Script& script) { return script.loads; }), 1) << "the engine stays loaded";
}

TEST_F(SpeechRecognizerTest, SoundThatIsOverIsReadToItsEndBeforeTheRecordingStops) {
  startAndWait();
  bool wasRecording = false;
  composer.onHeard = [&] { wasRecording = recognizer->isRecording(); };
  backend.say(1);
  backend.with([](Script& script) { script.isOver = true; });
  ASSERT_TRUE(QTest::qWaitFor([&] { return !recognizer->isRecording(); }));
  EXPECT_EQ(composer.heard.back(), "and eggs please");
  EXPECT_TRUE(wasRecording) << "the last words come first";
  EXPECT_THAT(failures, IsEmpty());
}

TEST_F(SpeechRecognizerTest, SecondStartLeavesTheFirstAlone) {
  composer.start(*recognizer);
  EXPECT_TRUE(recognizer->isStarting());
  Composer second;
  second.start(*recognizer);
  EXPECT_THAT(second.outcomes, ElementsAre(unavailable)) << "while starting";
  ASSERT_TRUE(QTest::qWaitFor([&] { return recognizer->isRecording(); }));
  second.start(*recognizer);
  EXPECT_THAT(second.outcomes, ElementsAre(unavailable, unavailable)) << "while recording";
  sayAndWaitFor("and");
  EXPECT_THAT(second.heard, IsEmpty());
  EXPECT_EQ(backend.with([](const Script& script) { return script.opened; }), 1);
}

TEST_F(SpeechRecognizerTest, StopWhileStartingCancels) {
  backend.with([](Script& script) { script.holdsStart = true; });
  composer.start(*recognizer);
  EXPECT_TRUE(waitFor([](const Script& script) { return script.opened == 1; }));
  recognizer->stopRecording();
  EXPECT_FALSE(recognizer->isStarting());
  EXPECT_TRUE(waitFor([](const Script& script) { return script.closed == 1; }));
  QCoreApplication::processEvents();
  EXPECT_THAT(composer.outcomes, IsEmpty());
}

TEST_F(SpeechRecognizerTest, UnavailableIsToldAtOnceAndChangesNothing) {
  backend.model = std::nullopt;
  EXPECT_FALSE(recognizer->isAvailable());
  composer.start(*recognizer);
  EXPECT_THAT(composer.outcomes, ElementsAre(unavailable));
  EXPECT_FALSE(recognizer->isStarting());
  // A model that is installed meanwhile counts.
  backend.model = SpeechModel(PocketSphinxModel{});
  EXPECT_TRUE(recognizer->isAvailable());

  SpeechRecognizer without(nullptr, {});
  EXPECT_FALSE(without.recognizer());
  composer.start(without);
  EXPECT_THAT(composer.outcomes, ElementsAre(unavailable, unavailable));
}

TEST_F(SpeechRecognizerTest, TellsWhatTheUserSetUpWrong) {
  backend.model = std::unexpected(Error{"The program is missing."});
  EXPECT_TRUE(recognizer->isAvailable());
  composer.start(*recognizer);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !composer.outcomes.empty(); }));
  EXPECT_THAT(composer.outcomes, ElementsAre("The program is missing."));
  EXPECT_FALSE(recognizer->isStarting());
}

TEST_F(SpeechRecognizerTest, MicrophoneThatDoesNotOpenIsTheOutcome) {
  backend.with([](Script& script) { script.fault = AudioError{AudioFault::noMicrophone, ""}; });
  composer.start(*recognizer);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !composer.outcomes.empty(); }));
  EXPECT_THAT(composer.outcomes, ElementsAre("No microphone was found. Connect one and try again."));
  EXPECT_FALSE(recognizer->isRecording());
  EXPECT_THAT(failures, IsEmpty()) << "told twice";

  backend.with([](Script& script) { script.fault.reset(); });
  startAndWait();
  sayAndWaitFor("and");
}

TEST_F(SpeechRecognizerTest, WithoutThreadsItSaysSoAndIsTriedAgainNextTime) {
  {
    const NoThreads noThreads;
    composer.start(*recognizer);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !composer.outcomes.empty(); }));
  }
  EXPECT_THAT(composer.outcomes, ElementsAre(HasSubstr("as many tasks as it can")));
  startAndWait();
  sayAndWaitFor("and");
}

TEST_F(SpeechRecognizerTest, MicrophoneThatGoesAwayKeepsWhatWasSaid) {
  startAndWait();
  sayAndWaitFor("and");
  backend.with([](Script& script) { script.fault = AudioError{AudioFault::lost, ""}; });
  ASSERT_TRUE(QTest::qWaitFor([&] { return !recognizer->isRecording(); }));
  EXPECT_THAT(composer.heard, ElementsAre("and"));
  EXPECT_THAT(failures, ElementsAre("The microphone was disconnected."));
}

TEST_F(SpeechRecognizerTest, ErrorOfTheEngineStopsAndIsTriedAgainNextTime) {
  const auto failWith = [&](auto member) {
    backend.with([&](Script& script) { script.*member = Error{"The model is broken."}; });
    composer.start(*recognizer);
    backend.say(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !recognizer->isRecording() && !recognizer->isStarting(); }));
    backend.with([&](Script& script) {
      (script.*member).reset();
      script.said.clear();
    });
  };
  failWith(&Script::loadError);
  failWith(&Script::acceptError);
  EXPECT_THAT(composer.heard, IsEmpty());
  // Whether the engine or the microphone is ready first decides who is told.
  EXPECT_EQ(std::ranges::count(failures, "The model is broken.") +
                std::ranges::count(composer.outcomes, "The model is broken."),
            2);
  startAndWait();
  sayAndWaitFor("and");
  EXPECT_EQ(backend.with([](const Script& script) { return script.loads; }), 3);
}

TEST_F(SpeechRecognizerTest, SpeechDuringTheLoadIsNotLost) {
  backend.with([](Script& script) { script.holdsLoad = true; });
  startAndWait();
  backend.say(2);
  EXPECT_TRUE(waitFor([](const Script& script) { return script.said.empty(); }));
  backend.with([](Script& script) { script.holdsLoad = false; });
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return !composer.heard.empty() && composer.heard.back() == "and eggs"; }));
}

TEST_F(SpeechRecognizerTest, EngineThatNeverCatchesUpIsToldAndTextStays) {
  startAndWait();
  sayAndWaitFor("and");
  recognizer->stopRecording();
  backend.model = SpeechModel(SpeechProgram{{"second"}});
  backend.with([](Script& script) { script.holdsLoad = true; });
  startAndWait();
  backend.say(61 * AudioInput::sampleRate / static_cast<int>(AudioInput::chunkFrames));
  EXPECT_TRUE(waitFor([](const Script& script) { return script.said.empty(); }));
  backend.with([](Script& script) { script.holdsLoad = false; });
  EXPECT_TRUE(QTest::qWaitFor([&] { return !failures.empty(); }));
  EXPECT_THAT(failures, ElementsAre("This computer is too slow for speech recognition."));
}

TEST_F(SpeechRecognizerTest, LongSilenceChangesNothing) {
  backend.with([](Script& script) { script.readings.clear(); });
  startAndWait();
  for (int minute = 0; minute < 3; ++minute) {
    backend.say(60 * AudioInput::sampleRate / static_cast<int>(AudioInput::chunkFrames), 0);
    ASSERT_TRUE(waitFor([](const Script& script) { return script.said.empty(); }));
  }
  EXPECT_TRUE(recognizer->isRecording());
  EXPECT_THAT(composer.heard, IsEmpty());
  EXPECT_THAT(failures, IsEmpty());
}

TEST_F(SpeechRecognizerTest, AnotherComposerTakesOver) {
  SpeechRecognizer other(&service, {"en-GB"});
  follow(other);
  startAndWait();
  sayAndWaitFor("and");
  Composer otherComposer;
  otherComposer.start(other);
  EXPECT_FALSE(recognizer->isRecording());
  ASSERT_TRUE(QTest::qWaitFor([&] { return other.isRecording(); }));
  backend.say(1);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !otherComposer.heard.empty(); }));
  EXPECT_THAT(otherComposer.heard, ElementsAre("and"));
  EXPECT_THAT(composer.heard, ElementsAre("and"));
  EXPECT_THAT(failures, IsEmpty());
}

TEST_F(SpeechRecognizerTest, TellsNobodyOnceItIsGone) {
  for (const bool isStarted : {false, true}) {
    composer.start(*recognizer);
    recognizer->requestMicrophoneAuthorization([&](bool) { composer.heard.emplace_back("permission"); });
    recognizer->requestSpeechAuthorization([&](bool) { composer.heard.emplace_back("permission"); });
    if (isStarted) {
      ASSERT_TRUE(standStillUntil([](const Script& script) { return script.opened > script.closed; }));
    }
    backend.say(2);
    recognizer.reset();
    EXPECT_TRUE(waitFor([](const Script& script) { return script.opened == script.closed; }));
    QCoreApplication::processEvents();
    EXPECT_THAT(composer.heard, IsEmpty());
    EXPECT_THAT(composer.outcomes, IsEmpty());
    recognizer = std::make_unique<SpeechRecognizer>(&service, std::vector<std::string>{"en-GB"});
    backend.with([](Script& script) { script.said.clear(); });
  }
}

TEST_F(SpeechRecognizerTest, MayBeDestroyedByWhoeverIsTold) {
  recognizer->startRecording([&](const std::string&) { recognizer.reset(); }, [](const Result<void>&) {});
  backend.say(1);
  EXPECT_TRUE(QTest::qWaitFor([&] { return recognizer == nullptr; }));

  auto next = std::make_unique<SpeechRecognizer>(&service, std::vector<std::string>());
  next->startRecording([](const std::string&) {}, [&](const Result<void>&) { next.reset(); });
  EXPECT_TRUE(QTest::qWaitFor([&] { return next == nullptr; }));
  next = std::make_unique<SpeechRecognizer>(&service, std::vector<std::string>());
  next->requestMicrophoneAuthorization([&](bool) { next.reset(); });
  EXPECT_TRUE(QTest::qWaitFor([&] { return next == nullptr; }));
}

TEST_F(SpeechRecognizerTest, OnlyARefusalTakesTheMicrophoneAway) {
  const auto ask = [&](std::optional<AudioFault> fault) {
    backend.with([&](Script& script) {
      script.fault = fault ? std::optional(AudioError{*fault, "detail"}) : std::nullopt;
    });
    std::optional<bool> answer;
    recognizer->requestMicrophoneAuthorization([&](bool isGranted) { answer = isGranted; });
    EXPECT_FALSE(answer) << "the answer comes later";
    EXPECT_TRUE(QTest::qWaitFor([&] { return answer.has_value(); }));
    return answer;
  };
  EXPECT_EQ(ask(std::nullopt), true);
  EXPECT_EQ(ask(AudioFault::noMicrophone), true);
  EXPECT_EQ(ask(AudioFault::accessDenied), false);

  std::optional<bool> speech;
  recognizer->requestSpeechAuthorization([&](bool isGranted) { speech = isGranted; });
  EXPECT_FALSE(speech) << "the answer comes later";
  EXPECT_TRUE(QTest::qWaitFor([&] { return speech == true; }));
}

TEST_F(SpeechRecognizerTest, DictatesInTheFirstPreferredLanguage) {
  const struct {
    std::vector<std::string> preferred;
    const char* language;
  } cases[] = {
      {{}, "en-US"},
      {{"C"}, "en-US"},
      {{"C.UTF-8", "POSIX"}, "en-US"},
      {{"de-AT", "en-US"}, "de-AT"},
      {{"de_DE.UTF-8@euro"}, "de-DE"},
      {{"C", "fr"}, "fr"},
  };
  for (const auto& [preferred, language] : cases) {
    const SpeechRecognizer chosen(&service, preferred);
    EXPECT_TRUE(chosen.isAvailable());
    EXPECT_EQ(backend.language, language);
  }
}

TEST_F(SpeechRecognizerTest, EngineGoesAfterTenIdleMinutes) {
  const auto unloads = [](const Script& script) { return script.unloads; };
  startAndWait();
  sayAndWaitFor("and");
  scheduler.advance(std::chrono::minutes(30));
  recognizer->stopRecording();
  scheduler.advance(std::chrono::minutes(9));
  startAndWait();
  scheduler.advance(std::chrono::minutes(9));
  recognizer->stopRecording();
  scheduler.advance(std::chrono::minutes(9));
  EXPECT_TRUE(waitFor([](const Script& script) { return script.abandons == 2; }));
  EXPECT_EQ(backend.with(unloads), 0);
  scheduler.advance(std::chrono::minutes(1));
  EXPECT_TRUE(waitFor([](const Script& script) { return script.unloads == 1; }));
  startAndWait();
  EXPECT_TRUE(waitFor([](const Script& script) { return script.loads == 2; }));
}

TEST_F(SpeechRecognizerTest, AnotherModelReplacesTheEngine) {
  startAndWait();
  sayAndWaitFor("and");
  recognizer->stopRecording();
  backend.model = SpeechModel(VoskModel{"/lib", "/model"});
  startAndWait();
  EXPECT_TRUE(waitFor([](const Script& script) { return script.loads == 2 && script.unloads == 1; }));
}

/// A request whose sound ends is read to its end.
TEST(SpeechServiceTest, FinalResultHoldsTheLastReading) {
  FakeSpeechBackend backend;
  FakeScheduler scheduler;
  SpeechService service(backend, scheduler);
  const auto request = std::make_shared<SpeechRecognitionRequest>();
  std::vector<SpeechResult> results;
  const auto task = service.recognizer("en").recognitionTask(
      request, [&](const SpeechResult& result) { results.push_back(result); });
  const std::vector<std::int16_t> piece(AudioInput::chunkFrames);
  request->append(piece);
  request->append(piece);
  request->endAudio();
  request->append(piece);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !results.empty(); }));
  task->cancel();
  ASSERT_EQ(results.size(), 1U) << "partial results were not asked for";
  EXPECT_TRUE(results.front().isFinal);
  EXPECT_EQ(results.front().bestTranscription, "and eggs please");
}

} // namespace
} // namespace notlet
