#include "platform/speech/SphinxEngine.h"

#include <gmock/gmock.h>

#include <sstream>

#include "platform/speech/SpeechModels.h"
#include "platform/speech/SynthesizedSpeech.h"

namespace notlet {
namespace {

using testing::IsSupersetOf;

/// The engine with the installed model, loaded once for all tests.
SphinxEngine& engine() {
  static const auto loaded = [] {
    const auto model = SpeechModels(SpeechModels::Places()).find("en-US");
    auto made = std::make_unique<SphinxEngine>(std::get<PocketSphinxModel>(model.value().value()));
    testing::internal::CaptureStderr();
    EXPECT_TRUE(made->load());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    return made;
  }();
  return *loaded;
}

std::vector<std::string> wordsOf(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

/// Says all of it; how often the reading changed.
int say(const std::vector<std::int16_t>& sound) {
  int changes = 0;
  std::string last;
  for (std::size_t begin = 0; begin < sound.size(); begin += AudioInput::chunkFrames) {
    const auto piece =
        std::span(sound).subspan(begin, std::min(AudioInput::chunkFrames, sound.size() - begin));
    const auto reading = engine().accept(piece);
    EXPECT_TRUE(reading);
    changes += *reading != last;
    last = *reading;
  }
  return changes;
}

TEST(SphinxEngineTest, UnderstandsDictationAfterDictation) {
  const auto sound = spoken("remember to pay the electricity bill before friday");
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(engine().begin());
    EXPECT_GT(say(sound), 4) << "words are shown while they are said";
    const std::string text = engine().finish().value();
    int understood = 0;
    const auto words = wordsOf(text);
    for (const char* word : {"remember", "pay", "electricity", "bill", "friday"})
      understood += static_cast<int>(std::ranges::count(words, word) > 0);
    EXPECT_GE(understood, 4) << text;
  }
}

TEST(SphinxEngineTest, SentencesAfterPausesAreKept) {
  ASSERT_TRUE(engine().begin());
  say(spoken("call anna tomorrow"));
  say(std::vector<std::int16_t>(AudioInput::sampleRate));
  say(spoken("water the plants"));
  EXPECT_THAT(wordsOf(engine().finish().value()), IsSupersetOf({"call", "tomorrow", "water", "plants"}));

  ASSERT_TRUE(engine().begin());
  say(spoken("call anna tomorrow"));
  engine().abandon();
  ASSERT_TRUE(engine().begin());
  EXPECT_EQ(engine().finish().value(), "") << "an abandoned dictation leaves nothing behind";
}

// Somebody who reads aloud makes no pause; the utterance is cut then, and its words stay.
TEST(SphinxEngineTest, SpeechWithoutAPauseIsKeptWhereItIsCut) {
  const auto sentence = spokenWithoutPause("remember to pay the electricity bill before friday");
  std::vector<std::int16_t> sound;
  std::ptrdiff_t times = 0;
  for (; sound.size() < std::size_t{24} * AudioInput::sampleRate; ++times)
    sound.insert(sound.end(), sentence.begin(), sentence.end());
  ASSERT_TRUE(engine().begin());
  say(sound);
  const auto words = wordsOf(engine().finish().value());
  for (const char* word : {"electricity", "friday"})
    EXPECT_GE(std::ranges::count(words, word), times - 1) << word;
}

TEST(SphinxEngineTest, MissingModelIsAnError) {
  EXPECT_FALSE(SphinxEngine({"/nonexistent", "/nonexistent", "/nonexistent"}).load());
}

} // namespace
} // namespace notlet
