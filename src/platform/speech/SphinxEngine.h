#pragma once

#include <memory>

#include "platform/SpeechEngine.h"
#include "platform/SpeechModel.h"
#include "platform/speech/Transcript.h"

struct ps_decoder_s;

namespace notlet {

/// The engine that every installation has. Its words are lowercase and without punctuation.
class SphinxEngine final : public SpeechEngine {
 public:
  explicit SphinxEngine(PocketSphinxModel model);
  ~SphinxEngine() override;

  Result<void> load() override;
  Result<void> begin() override;
  Result<std::string> accept(AudioFrames frames) override;
  Result<std::string> finish() override;
  void abandon() override;

 private:
  struct FreeDecoder {
    void operator()(ps_decoder_s* decoder) const;
  };

  [[nodiscard]] bool startUtterance();
  void endUtterance();
  [[nodiscard]] std::string reading() const;

  PocketSphinxModel m_model;
  std::unique_ptr<ps_decoder_s, FreeDecoder> m_decoder;
  Transcript m_transcript;
  /// Frames since the first word of the utterance.
  std::size_t m_length = 0;
  bool m_isOpen = false;
  bool m_hasSpoken = false;
};

} // namespace notlet
