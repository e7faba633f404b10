#include <gmock/gmock.h>

#include <QSignalSpy>
#include <QTest>

#include "capture/ComposerFixture.h"
#include "support/FakeSpeechBackend.h"

namespace notlet {

namespace {

using Script = FakeSpeechBackend::Script;
using Dictation = CaptureComposer::Dictation;
using testing::ElementsAre;
using testing::Optional;

class ComposerDictationTest : public ComposerFixture {
 protected:
  ComposerDictationTest() {
    backend.with([](Script& script) { script.readings = {"and", "and eggs"}; });
  }
  ~ComposerDictationTest() override {
    backend.with([](Script& script) { script.holdsStart = false; });
  }

  void tap() {
    speaking.handleMicTap();
    ASSERT_TRUE(waitFor(Dictation::recording));
  }
  [[nodiscard]] bool waitFor(Dictation dictation) {
    return QTest::qWaitFor([&] { return speaking.state().dictation == dictation; });
  }
  /// Says something and waits until the draft is as expected.
  void hear(const std::string& draft) {
    backend.say(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return speaking.state().input == draft; }))
        << speaking.state().input << " instead of " << draft;
  }
  /// Speech that is heard after all that should have been.
  void expectNothingMoreIsHeard() {
    const std::string draft = speaking.state().input;
    backend.say(3);
    QTest::qWait(20);
    EXPECT_EQ(speaking.state().input, draft);
    backend.with([](Script& script) { script.said.clear(); });
  }

  FakeSpeechBackend backend;
  SpeechService service{backend, scheduler};
  CaptureComposer::Surroundings surroundings{context, center, clock,    scheduler,
                                             drafts,  {},     &service, {"en-US"}};
  CaptureComposer speaking{surroundings};
};

} // namespace

TEST_F(ComposerDictationTest, PutsTheWordsBehindTheDraft) {
  struct Case {
    const char* draft;
    const char* first;
    const char* second;
  };
  for (const auto& [draft, first, second] : {
           Case{"", "and", "and eggs"},
           {"Buy milk", "Buy milk and", "Buy milk and eggs"},
           {"Buy milk ", "Buy milk and", "Buy milk and eggs"},
           {"Buy milk\n", "Buy milk\nand", "Buy milk\nand eggs"},
           {"Milk\u00a0", "Milk\u00a0and", "Milk\u00a0and eggs"},
       }) {
    speaking.setInput(draft);
    tap();
    hear(first);
    hear(second);
    speaking.handleMicTap();
    EXPECT_EQ(speaking.state().dictation, Dictation::off);
    expectNothingMoreIsHeard();
  }
}

TEST_F(ComposerDictationTest, TakesTheKeyboardFromTheEditorAndTellsHowLoudItIs) {
  const QSignalSpy levels(&speaking, &CaptureComposer::inputLevelChanged);
  speaking.setInputFocused(true);
  tap();
  EXPECT_FALSE(speaking.state().inputFocused);
  hear("and");
  EXPECT_TRUE(QTest::qWaitFor([&] { return !levels.isEmpty(); }));
}

// The words go behind what is there when the microphone opens, not behind what was there at the tap.
TEST_F(ComposerDictationTest, KeepsWhatIsTypedWhileTheMicrophoneOpens) {
  backend.with([](Script& script) { script.holdsStart = true; });
  speaking.handleMicTap();
  EXPECT_EQ(speaking.state().dictation, Dictation::starting);
  speaking.setInput("Milk");
  backend.with([](Script& script) { script.holdsStart = false; });
  ASSERT_TRUE(waitFor(Dictation::recording));
  hear("Milk and");
}

TEST_F(ComposerDictationTest, WhoeverWritesDoesNotDictateAnyMore) {
  tap();
  hear("and");
  speaking.setInput("and the rest is typed");
  EXPECT_EQ(speaking.state().dictation, Dictation::off);
  expectNothingMoreIsHeard();
}

TEST_F(ComposerDictationTest, ASecondTapTakesTheFirstBack) {
  backend.with([](Script& script) { script.holdsStart = true; });
  speaking.handleMicTap();
  speaking.handleMicTap();
  EXPECT_EQ(speaking.state().dictation, Dictation::off);
  backend.with([](Script& script) { script.holdsStart = false; });
  QTest::qWait(20);
  EXPECT_EQ(speaking.state().dictation, Dictation::off);
  expectNothingMoreIsHeard();
  tap();
}

TEST_F(ComposerDictationTest, StopsForGood) {
  using Stop = std::function<void()>;
  const std::vector<std::pair<const char*, Stop>> stops = {
      {"save", [this] { speaking.save(); }},
      {"disappearing", [this] { speaking.disappear(); }},
      {"bubble mode", [this] { center.post(CommandName::enterMacFloatingMode); }},
  };
  for (const auto& [name, stop] : stops) {
    SCOPED_TRACE(name);
    speaking.setInput("");
    tap();
    hear("and");
    stop();
    EXPECT_EQ(speaking.state().dictation, Dictation::off);
    expectNothingMoreIsHeard();
  }
  EXPECT_THAT(contents(), ElementsAre("and")) << "what was saved stays away from the draft";
}

TEST_F(ComposerDictationTest, TheQuickCaptureStopsWithItsPanel) {
  CaptureComposer quick(surroundings, CaptureComposer::Surface::quickCapture);
  quick.handleMicTap();
  ASSERT_TRUE(QTest::qWaitFor([&] { return quick.state().dictation == Dictation::recording; }));
  center.post(CommandName::enterMacFloatingMode);
  EXPECT_EQ(quick.state().dictation, Dictation::recording);
  center.post(CommandName::stopMacFloatingCapture);
  EXPECT_EQ(quick.state().dictation, Dictation::off);
}

TEST_F(ComposerDictationTest, AnotherComposerTakesOverWithoutAMessage) {
  CaptureComposer other(surroundings, CaptureComposer::Surface::quickCapture);
  tap();
  hear("and");
  other.handleMicTap();
  ASSERT_TRUE(waitFor(Dictation::off));
  EXPECT_EQ(speaking.state().speechError, std::nullopt);
  EXPECT_EQ(speaking.state().input, "and");
  EXPECT_TRUE(QTest::qWaitFor([&] { return other.state().dictation == Dictation::recording; }));
}

TEST_F(ComposerDictationTest, SaysWhyItDoesNotListen) {
  const auto failure = [this] {
    EXPECT_TRUE(QTest::qWaitFor([&] { return speaking.state().speechError.has_value(); }));
    EXPECT_EQ(speaking.state().dictation, Dictation::off);
    EXPECT_TRUE(speaking.state().inputFocused) << "what is said next is typed";
    const std::string message = speaking.state().speechError.value_or("");
    speaking.dismissSpeechError();
    EXPECT_EQ(speaking.state().speechError, std::nullopt);
    return message;
  };
  speaking.setInput("kept");
  backend.model = std::nullopt;
  speaking.handleMicTap();
  EXPECT_EQ(failure(), "Speech recognition is currently unavailable. Try again later.");
  backend.model = SpeechModel(SpeechProgram{{"recogniser"}});

  backend.with([](Script& script) { script.fault = AudioError{AudioFault::accessDenied, ""}; });
  speaking.handleMicTap();
  EXPECT_EQ(failure(), "Microphone access is required to dictate your thoughts.");
  EXPECT_EQ(backend.with([](const Script& script) { return script.opened; }), 0) << "it was asked for only";

  backend.with([](Script& script) { script.fault = AudioError{AudioFault::noMicrophone, ""}; });
  speaking.handleMicTap();
  EXPECT_THAT(failure(), testing::HasSubstr("No microphone"));
  EXPECT_EQ(speaking.state().input, "kept");

  backend.with([](Script& script) { script.fault.reset(); });
  tap();
  hear("kept and");
  backend.with([](Script& script) { script.fault = AudioError{AudioFault::lost, ""}; });
  EXPECT_NE(failure(), "");
  EXPECT_EQ(speaking.state().input, "kept and") << "what was said before stays";

  CaptureComposer without({context, center, clock, scheduler, drafts});
  without.handleMicTap();
  EXPECT_THAT(without.state().speechError,
              Optional(std::string("Speech recognition is currently unavailable. Try again later.")));
}

TEST_F(ComposerDictationTest, MayGoAtAnyMoment) {
  for (const bool holdsStart : {true, false}) {
    backend.with([&](Script& script) { script.holdsStart = holdsStart; });
    auto brief = std::make_unique<CaptureComposer>(surroundings);
    brief->handleMicTap();
    EXPECT_TRUE(holdsStart ||
                QTest::qWaitFor([&] { return brief->state().dictation == Dictation::recording; }));
    backend.say(2);
    brief.reset();
    backend.with([](Script& script) { script.holdsStart = false; });
    QTest::qWait(20);
  }
}

} // namespace notlet
