#include "platform/speech/InstalledSpeech.h"

#include <gmock/gmock.h>

namespace notlet {
namespace {

/// Of the build tree, or of an installation that is to be tried.
std::filesystem::path programDirectory() {
  const char* installed = std::getenv("NOTLET_INSTALLED_PROGRAMS");
  return installed == nullptr ? NOTLET_PROGRAM_DIR : installed;
}

TEST(InstalledSpeechTest, LibraryMakesEachKind) {
  InstalledSpeech speech(Places(), InstalledSpeech::libraryOf(programDirectory()));
  EXPECT_TRUE(speech.makeAudioInput());
  for (const SpeechModel& model : {SpeechModel(SpeechProgram{{"/bin/true"}}), SpeechModel(VoskModel{}),
                                   SpeechModel(PocketSphinxModel{"/none", "/none", "/none"})}) {
    const auto engine = speech.makeEngine(model);
    ASSERT_TRUE(engine);
    EXPECT_EQ((*engine)->load().has_value(), std::holds_alternative<SpeechProgram>(model));
  }
}

TEST(InstalledSpeechTest, MissingLibraryIsTold) {
  InstalledSpeech speech(Places(), "/nonexistent/library.so");
  const auto input = speech.makeAudioInput();
  ASSERT_FALSE(input);
  EXPECT_THAT(input.error().message, testing::HasSubstr("Dictation is not installed completely: "));
  EXPECT_FALSE(speech.makeEngine(SpeechProgram{{"/bin/true"}}));
}

} // namespace
} // namespace notlet
