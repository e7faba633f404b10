#include "platform/speech/SpeechModels.h"

#include <gmock/gmock.h>

#include "platform/speech/VoskFolder.h"

namespace notlet {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class SpeechModelsTest : public testing::Test {
 protected:
  SpeechModelsTest() {
    for (const char* file : {"feat.params", "mdef", "means", "sendump", "transition_matrices", "variances"})
      VoskFolder::write(installed / "en-us" / file, "x");
    for (const char* file : {"en-us.lm.bin", "cmudict-en-us.dict"})
      VoskFolder::write(installed / file, "x");
    VoskFolder::write(program, "#!/bin/sh\n");
    fs::permissions(program, fs::perms::owner_all);
  }

  /// What is found, in one word: the program's name, the model's folder, "installed", "none"; or the error.
  [[nodiscard]] std::string find(const std::string& language) const {
    const auto found = SpeechModels({settings, folder.path(), installed}).find(language);
    if (!found)
      return found.error().message;
    if (!*found)
      return "none";
    if (const auto* model = std::get_if<SpeechProgram>(&**found))
      return model->command.front() == program ? "program" : "another program";
    if (const auto* model = std::get_if<VoskModel>(&**found))
      return model->directory.filename();
    return "installed";
  }

  TemporaryDirectory directory;
  fs::path settings = directory.path() / "speech.json";
  fs::path installed = directory.path() / "installed";
  fs::path program = directory.path() / "recogniser";
  VoskFolder folder;
};

TEST_F(SpeechModelsTest, InstalledModelIsForAllEnglish) {
  const struct {
    const char* language;
    const char* found;
  } cases[] = {
      {"en-US", "installed"}, {"en-GB", "installed"}, {"en", "installed"}, {"en_AU", "installed"},
      {"de-DE", "none"},      {"eng", "none"},        {"", "none"},        {"-en", "none"},
  };
  for (const auto& [language, found] : cases)
    EXPECT_EQ(find(language), found) << language;
  fs::remove(installed / "en-us" / "means");
  EXPECT_EQ(find("en-US"), "none") << "a part is missing";
}

TEST_F(SpeechModelsTest, WhatTheUserBringsIsPreferredForItsLanguage) {
  for (const char* name :
       {"vosk-model-small-de-0.15", "vosk-model-en-in-0.5", "vosk-model-small-en-us-0.15",
        "vosk-model-cn-0.22", "vosk-model-small-pt-0.3", "fr", "vosk-model-spk-0.4", "es-MX"})
    folder.addModel(name);
  const struct {
    const char* language;
    const char* found;
  } cases[] = {
      {"de-AT", "vosk-model-small-de-0.15"},
      {"de", "vosk-model-small-de-0.15"},
      {"en-US", "vosk-model-small-en-us-0.15"},
      {"en-IN", "vosk-model-en-in-0.5"},
      {"en-GB", "vosk-model-en-in-0.5"},
      {"zh-Hant-TW", "vosk-model-cn-0.22"},
      {"pt-BR", "vosk-model-small-pt-0.3"},
      {"fr-FR", "fr"},
      {"es-ES", "es-MX"},
      {"nl-NL", "none"},
      {"spk", "none"},
  };
  for (const auto& [language, found] : cases)
    EXPECT_EQ(find(language), found) << language;
}

TEST_F(SpeechModelsTest, SaysWhatIsWrongWithWhatTheUserBrought) {
  const fs::path model = folder.addModel("vosk-model-small-de-0.15");
  fs::create_directory(folder.path() / "vosk-linux-x86_64-0.3.45");
  fs::rename(folder.library(), folder.path() / "vosk-linux-x86_64-0.3.45" / "libvosk.so");
  EXPECT_EQ(find("de-DE"), "vosk-model-small-de-0.15") << "the library lies as its archive unpacks";
  fs::remove(model / "am" / "final.mdl");
  EXPECT_THAT(find("de-DE"), HasSubstr("incomplete or damaged"));
  fs::remove_all(folder.path() / "vosk-linux-x86_64-0.3.45");
  EXPECT_THAT(find("de-DE"), HasSubstr("libvosk.so, which is missing"));
  EXPECT_EQ(find("en-US"), "installed") << "other languages go on";
}

TEST_F(SpeechModelsTest, ProgramInTheSettingsGoesFirst) {
  folder.addModel("vosk-model-small-en-us-0.15");
  const std::string path = program.string();
  const struct {
    std::string settings;
    const char* language;
    const char* found;
  } cases[] = {
      {R"({"program": [")" + path + R"("]})", "de-DE", "program"},
      {R"({"program": [")" + path + R"(", "--fast"], "language": "en"})", "en-GB", "program"},
      {R"({"program": [")" + path + R"("], "language": "en-GB"})", "en-US", "vosk-model-small-en-us-0.15"},
      {R"({"program": [")" + path + R"("], "language": "fr"})", "de-DE", "none"},
  };
  for (const auto& [contents, language, found] : cases) {
    VoskFolder::write(settings, contents);
    EXPECT_EQ(find(language), found) << contents;
  }
}

TEST_F(SpeechModelsTest, SettingsThatCannotBeUsedAreToldAndNotPassedOver) {
  const fs::path notExecutable = directory.path() / "document";
  VoskFolder::write(notExecutable, "text");
  const struct {
    std::string settings;
    const char* complaint;
  } cases[] = {
      {"", "speech.json"},
      {"{", "speech.json"},
      {"[]", "names no \"program\""},
      {"{}", "names no \"program\""},
      {R"({"program": "one text"})", "must be a list of texts"},
      {R"({"program": [1]})", "must be a list of texts"},
      {R"({"program": ["/bin/true"], "language": 1})", "\"language\" a text"},
      {R"({"program": []})", "whole path"},
      {R"({"program": ["true"]})", "whole path"},
      {R"({"program": ["/nonexistent"]})", "/nonexistent is no program"},
      {R"({"program": ["/"]})", "/ is no program"},
      {R"({"program": [")" + notExecutable.string() + R"("]})", "document is no program"},
  };
  for (const auto& [contents, complaint] : cases) {
    VoskFolder::write(settings, contents);
    EXPECT_THAT(find("en-US"), HasSubstr(complaint)) << contents;
  }
}

} // namespace
} // namespace notlet
