#pragma once

#include <chrono>

#include "platform/AudioInput.h"
#include "platform/Descriptor.h"

namespace notlet {

/// The default microphone of PulseAudio or PipeWire.
class PulseInput final : public AudioInput {
 public:
  /// How long to wait before something counts as failed.
  struct Patience {
    std::chrono::milliseconds answer{2000};
    std::chrono::milliseconds frames{3000};
  };

  PulseInput() : PulseInput(Patience()) {}
  explicit PulseInput(const Patience& patience);

  std::expected<void, AudioError> listen(const Listener& listener) override;
  std::expected<void, AudioError> probe() override;
  void stop() override;

 private:
  Patience m_patience;
  /// Readable once stop() was called.
  Descriptor m_stopping;
};

} // namespace notlet
