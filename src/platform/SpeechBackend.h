#pragma once

#include <memory>
#include <optional>
#include <string>

#include "core/Error.h"
#include "platform/AudioInput.h"
#include "platform/SpeechEngine.h"
#include "platform/SpeechModel.h"

namespace notlet {

/// What dictation needs of the machine: a microphone, and something that understands speech.
class SpeechBackend {
 public:
  virtual ~SpeechBackend() = default;
  /// What understands the language, a tag such as "en-US"; nothing when the machine has nothing for it. Looks
  /// at files and loads nothing. An error tells what the user set up and cannot be used.
  [[nodiscard]] virtual Result<std::optional<SpeechModel>> modelFor(const std::string& language) const = 0;
  /// Called on a thread of its own, because the libraries behind it may come from a slow disk.
  [[nodiscard]] virtual Result<std::unique_ptr<AudioInput>> makeAudioInput() = 0;
  /// As above.
  [[nodiscard]] virtual Result<std::unique_ptr<SpeechEngine>> makeEngine(const SpeechModel& model) = 0;
};

} // namespace notlet
