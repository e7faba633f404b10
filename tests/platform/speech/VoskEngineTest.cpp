#include "platform/speech/VoskEngine.h"

#include <gmock/gmock.h>

#include "platform/speech/VoskFiles.h"
#include "platform/speech/VoskFolder.h"

namespace notlet {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::string complaint(const Result<void>& result) {
  return result ? "none" : result.error().message;
}

TEST(VoskEngineTest, JoinsSentences) {
  const VoskFolder folder;
  VoskEngine engine({folder.library(), folder.addModel("en")});
  ASSERT_EQ(complaint(engine.load()), "none");
  const std::vector<std::int16_t> loud(AudioInput::chunkFrames, 1000);
  const std::vector<std::int16_t> quiet(AudioInput::chunkFrames, 0);
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(engine.begin());
    EXPECT_EQ(engine.accept(loud), "one");
    EXPECT_EQ(engine.accept(loud), "one one");
    EXPECT_EQ(engine.accept(quiet), "one one");
    EXPECT_EQ(engine.accept(quiet), "one one");
    EXPECT_EQ(engine.accept(loud), "one one one");
    if (round == 0)
      engine.abandon();
    else
      EXPECT_EQ(engine.finish(), "one one one");
  }
}

TEST(VoskEngineTest, ForeignLibraryIsToldByName) {
  const VoskFolder folder;
  fs::copy_file(NOTLET_NO_VOSK, folder.library(), fs::copy_options::overwrite_existing);
  EXPECT_THAT(complaint(VoskEngine({folder.library(), folder.addModel("en")}).load()),
              HasSubstr("is no Vosk library: it has no “vosk_"));
}

/// Each of these would end the program inside the library or while it is opened.
TEST(VoskFilesTest, BrokenLibraryIsFoundBeforeItIsOpened) {
  const VoskFolder folder;
  EXPECT_EQ(complaint(checkVoskLibrary(folder.library())), "none");
  const auto size = fs::file_size(folder.library());
  for (const auto kept : {size - 1, size / 2, std::uintmax_t{100}}) {
    fs::resize_file(folder.library(), kept);
    EXPECT_THAT(complaint(checkVoskLibrary(folder.library())), HasSubstr("is damaged")) << kept;
  }
  const std::string header = "\x7f"
                             "ELF";
  for (const std::string& contents :
       {std::string(), std::string("#!/bin/sh\n"), header, header + std::string(96, 1)}) {
    VoskFolder::write(folder.library(), contents);
    EXPECT_THAT(complaint(checkVoskLibrary(folder.library())), HasSubstr("is not for this kind of computer"));
  }
  EXPECT_NE(complaint(checkVoskLibrary(folder.path())), "none") << "a folder";
  EXPECT_NE(complaint(checkVoskLibrary("/nonexistent")), "none");
}

TEST(VoskFilesTest, BrokenModelIsFoundBeforeItIsLoaded) {
  const VoskFolder folder;
  const fs::path model = folder.addModel("en");
  EXPECT_EQ(complaint(checkVoskModel(model)), "none");
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(model))
    if (entry.is_regular_file())
      files.push_back(entry.path());
  EXPECT_EQ(files.size(), 10U);
  for (const fs::path& file : files) {
    const fs::path away = folder.path() / "away";
    fs::rename(file, away);
    EXPECT_THAT(complaint(checkVoskModel(model)), HasSubstr(file.filename().string())) << "missing";
    VoskFolder::write(file, "");
    EXPECT_THAT(complaint(checkVoskModel(model)), HasSubstr(file.filename().string())) << "empty";
    if (file.extension() == ".fst" || file.extension() == ".mdl") {
      VoskFolder::write(file, "<html>Not found</html>");
      EXPECT_THAT(complaint(checkVoskModel(model)), HasSubstr(file.filename().string())) << "something else";
    }
    fs::rename(away, file);
  }
}

} // namespace
} // namespace notlet
