#include <gmock/gmock.h>
#include <malloc.h>

#include <QTest>
#include <fstream>

#include "platform/SpeechService.h"
#include "support/FakeScheduler.h"

namespace notlet {
namespace {

/// What this process has for itself and not from files, in megabytes.
double ownMemory() {
  std::ifstream file("/proc/self/smaps_rollup");
  for (std::string line; std::getline(file, line);)
    if (line.starts_with("Anonymous:"))
      return std::stod(line.substr(line.find(':') + 1)) / 1024;
  return -1;
}

/// An engine that needs forty megabytes, in pieces as a model has them.
class LargeEngine final : public SpeechEngine {
 public:
  Result<void> load() override {
    m_model.assign(640, std::vector<char>(std::size_t{64} << 10, 'x'));
    return {};
  }
  Result<void> begin() override { return {}; }
  Result<std::string> accept(AudioFrames) override { return {}; }
  Result<std::string> finish() override { return std::string(1, m_model.back().back()); }
  void abandon() override {}

 private:
  std::vector<std::vector<char>> m_model;
};

class LargeBackend final : public SpeechBackend {
 public:
  [[nodiscard]] Result<std::optional<SpeechModel>> modelFor(const std::string&) const override {
    return SpeechModel(SpeechProgram{{"large"}});
  }
  [[nodiscard]] Result<std::unique_ptr<AudioInput>> makeAudioInput() override { return failure("none"); }
  [[nodiscard]] Result<std::unique_ptr<SpeechEngine>> makeEngine(const SpeechModel&) override {
    return std::make_unique<LargeEngine>();
  }
};

// The allocator keeps what is given back to it, unless it is told not to.
TEST(SpeechMemoryTest, IdleEngineGivesItsMemoryBack) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizers' allocators keep what is freed on purpose";
#endif
  LargeBackend backend;
  FakeScheduler scheduler;
  SpeechService service(backend, scheduler);
  // Once it has seen a large block, the allocator keeps more.
  EXPECT_EQ(std::vector<char>(std::size_t{30} << 20, 'x').back(), 'x');
  malloc_trim(0); // What earlier tests have left must not count.
  const double before = ownMemory();
  for (int round = 0; round < 2; ++round) {
    const auto request = std::make_shared<SpeechRecognitionRequest>();
    bool isOver = false;
    const auto task = service.recognizer("en-US").recognitionTask(
        request, [&](const SpeechResult& result) { isOver = result.isFinal; });
    request->endAudio();
    ASSERT_TRUE(QTest::qWaitFor([&] { return isOver; }));
    // What others have freed, and the allocator has kept, may serve it in part.
    const double loaded = ownMemory();
    task->cancel();
    scheduler.advance(SpeechService::idleTime);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ownMemory() < std::min(loaded - 35, before + 5); }))
        << ownMemory() << " MB of " << loaded << " stay, and were " << before;
  }
}

} // namespace
} // namespace notlet
