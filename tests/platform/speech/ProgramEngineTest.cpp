#include "platform/speech/ProgramEngine.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <thread>

#include "support/TemporaryDirectory.h"

namespace notlet {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

class ProgramEngineTest : public testing::Test {
 protected:
  /// An engine whose program is this shell script.
  [[nodiscard]] ProgramEngine engineOf(const std::string& script) const {
    std::ofstream(directory.path() / "recogniser") << script;
    return ProgramEngine({{"/bin/sh", directory.path() / "recogniser"}});
  }
  /// Feeds silence until the reading is what it should be, or there is an error; the last of either.
  static std::string listenUntil(ProgramEngine& engine, const std::string& expected) {
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    std::string last;
    do {
      const std::vector<std::int16_t> piece(AudioInput::chunkFrames);
      const auto reading = engine.accept(piece);
      if (!reading)
        return reading.error().message;
      last = *reading;
      std::this_thread::sleep_for(1ms);
    } while (last != expected && std::chrono::steady_clock::now() < deadline);
    return last;
  }
  static std::string listenUntilError(ProgramEngine& engine) {
    return listenUntil(engine, "nothing says this");
  }

  TemporaryDirectory directory;
};

TEST_F(ProgramEngineTest, JoinsSentencesAndFinishesWithTheSound) {
  auto engine = engineOf(R"(
    echo '{"partial": "call"}'
    head -c 2048 >/dev/null
    echo '{"partial": "call anna", "more": [1, 2]}'
    echo '{"final": " call Anna.\\n"}'
    head -c 2048 >/dev/null
    printf '{"par'; printf 'tial": "water"}\n'
    count=$(wc -c)
    echo "{\"final\": \"water $count\"}"
  )");
  ASSERT_TRUE(engine.load());
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(engine.begin());
    EXPECT_EQ(listenUntil(engine, "call Anna. water"), "call Anna. water");
    const std::string last = engine.finish().value();
    EXPECT_THAT(last, testing::MatchesRegex("call Anna\\. water [0-9]+"));
    EXPECT_EQ(std::stoi(last.substr(last.rfind(' '))) % 2048, 0) << "all of the sound arrived";
  }
}

TEST_F(ProgramEngineTest, UnderstandsNothingInRubbish) {
  auto engine = engineOf(R"(
    echo 'Loading model...'
    echo '[]'; echo '"partial"'; echo '{"partial": 1}'; echo '{"final": ["x"]}'; echo '{"partial": "x"'
    printf '{"partial": "\377"}\n'; printf '\0\n'; echo
    head -c 300000 /dev/zero | tr '\0' x; echo
    echo '{"partial": "at last"}'
    cat >/dev/null
  )");
  ASSERT_TRUE(engine.begin());
  EXPECT_EQ(listenUntil(engine, "at last"), "at last");
}

TEST_F(ProgramEngineTest, TellsHowAProgramFailed) {
  const struct {
    const char* script;
    const char* complaint;
  } cases[] = {
      {"exit 3", "it ended with status 3"},
      {"kill -SEGV $$", "it was ended by signal 11"},
      {"exec >&-; cat >/dev/null", "it closed its output"},
      {"exec sleep 60", "it does not read the sound"},
      {"while :; do echo '{\"final\": \"word word word word word word word word\"}'; done",
       "it writes more than anybody can say"},
  };
  for (const auto& [script, complaint] : cases) {
    auto engine = engineOf(script);
    ASSERT_TRUE(engine.begin());
    EXPECT_THAT(listenUntilError(engine), HasSubstr(complaint)) << script;
  }
  EXPECT_FALSE(ProgramEngine({{"/nonexistent"}}).begin());
}

TEST_F(ProgramEngineTest, ProgramThatFloodsDoesNotHoldTheSoundUp) {
  auto engine = engineOf("yes 'no words'");
  ASSERT_TRUE(engine.begin());
  const auto begin = std::chrono::steady_clock::now();
  for (int piece = 0; piece < 100; ++piece) {
    EXPECT_EQ(engine.accept({}), "");
    std::this_thread::sleep_for(1ms);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);
}

TEST_F(ProgramEngineTest, EndsTheProgramAndWhatItStarted) {
  auto engine = engineOf(R"(
    trap '' TERM
    sleep 60 &
    echo "{\"partial\": \"$$ $!\"}"
    wait
    sleep 60
  )");
  ASSERT_TRUE(engine.begin());
  std::string processes;
  while (processes.empty()) {
    const auto reading = engine.accept({});
    ASSERT_TRUE(reading) << reading.error().message;
    processes = *reading;
  }
  engine.abandon();
  std::istringstream stream(processes);
  for (pid_t process = 0; stream >> process;) {
    const std::string state = "/proc/" + std::to_string(process) + "/stat";
    for (int attempt = 0; attempt < 1000 && std::filesystem::exists(state); ++attempt)
      std::this_thread::sleep_for(1ms);
    std::string line;
    std::getline(std::ifstream(state), line);
    EXPECT_TRUE(line.empty() || line.contains(") Z ")) << line;
  }
}

} // namespace
} // namespace notlet
