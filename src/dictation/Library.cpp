#include "platform/speech/ProgramEngine.h"
#include "platform/speech/PulseInput.h"
#include "platform/speech/SpeechParts.h"
#include "platform/speech/SphinxEngine.h"
#include "platform/speech/VoskEngine.h"

namespace notlet {
namespace {

std::unique_ptr<SpeechEngine> engineOf(const SpeechProgram& program) {
  return std::make_unique<ProgramEngine>(program);
}

std::unique_ptr<SpeechEngine> engineOf(const VoskModel& model) {
  return std::make_unique<VoskEngine>(model);
}

std::unique_ptr<SpeechEngine> engineOf(const PocketSphinxModel& model) {
  return std::make_unique<SphinxEngine>(model);
}

class Parts final : public SpeechParts {
 public:
  [[nodiscard]] std::unique_ptr<AudioInput> makeAudioInput() const override {
    return std::make_unique<PulseInput>();
  }
  [[nodiscard]] std::unique_ptr<SpeechEngine> makeEngine(const SpeechModel& model) const override {
    return std::visit([](const auto& kind) { return engineOf(kind); }, model);
  }
};

} // namespace
} // namespace notlet

extern "C" __attribute__((visibility("default"))) const notlet::SpeechParts* notletSpeechParts() {
  static const notlet::Parts parts;
  return &parts;
}
