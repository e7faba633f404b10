#pragma once

#include <string>

#include "core/Error.h"
#include "platform/AudioInput.h"

namespace notlet {

/// Turns sound into words. Called from one thread at a time; after an error it is thrown away.
class SpeechEngine {
 public:
  virtual ~SpeechEngine() = default;
  /// Gets ready, which may take seconds. Called once, before everything else.
  [[nodiscard]] virtual Result<void> load() = 0;
  /// Begins a dictation.
  [[nodiscard]] virtual Result<void> begin() = 0;
  /// Takes a piece of sound and gives the best reading of everything since begin(), UTF-8.
  [[nodiscard]] virtual Result<std::string> accept(AudioFrames frames) = 0;
  /// The last reading of a dictation whose sound is over.
  [[nodiscard]] virtual Result<std::string> finish() = 0;
  /// Ends a dictation nobody waits for.
  virtual void abandon() = 0;
};

} // namespace notlet
