#pragma once

#include <memory>

#include "platform/AudioInput.h"
#include "platform/SpeechEngine.h"
#include "platform/SpeechModel.h"

namespace notlet {

/// What the library for dictation makes. The library is one of its own, so that a program which nobody
/// dictates to does not load those for sound and speech.
class SpeechParts {
 public:
  virtual ~SpeechParts() = default;
  [[nodiscard]] virtual std::unique_ptr<AudioInput> makeAudioInput() const = 0;
  [[nodiscard]] virtual std::unique_ptr<SpeechEngine> makeEngine(const SpeechModel& model) const = 0;
};

/// The library's one function: gives the parts, which stay as long as the process.
using SpeechPartsFunction = const SpeechParts* (*)();
constexpr const char* speechPartsFunctionName = "notletSpeechParts";

} // namespace notlet
