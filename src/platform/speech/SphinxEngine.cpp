#include "platform/speech/SphinxEngine.h"

#include <pocketsphinx.h>
#include <sphinxbase/err.h>

#include <array>

namespace notlet {

namespace {

/// Fed first, so that the estimate of the noise begins with silence even when the user speaks at once.
constexpr std::size_t leadIn = AudioInput::sampleRate / 10;
/// The last pass over a longer utterance takes seconds; its running reading stands instead.
constexpr std::size_t longestRescored = std::size_t{10} * AudioInput::sampleRate;
/// Searching grows slower as an utterance grows longer; one without a pause is cut here.
constexpr std::size_t longestUtterance = std::size_t{20} * AudioInput::sampleRate;

struct FreeConfiguration {
  void operator()(cmd_ln_t* configuration) const { cmd_ln_free_r(configuration); }
};

} // namespace

void SphinxEngine::FreeDecoder::operator()(ps_decoder_s* decoder) const {
  ps_free(decoder);
}

SphinxEngine::SphinxEngine(PocketSphinxModel model) : m_model(std::move(model)) {
}

SphinxEngine::~SphinxEngine() = default;

Result<void> SphinxEngine::load() {
  // It would tell its life's story on standard error: the first holds for all threads, the second for the
  // settings.
  err_set_callback(nullptr, nullptr);
  err_set_logfp(nullptr);
  const std::unique_ptr<cmd_ln_t, FreeConfiguration> configuration(
      cmd_ln_init(nullptr, ps_args(), TRUE, "-hmm", m_model.acoustics.c_str(), "-lm",
                  m_model.language.c_str(), "-dict", m_model.dictionary.c_str(), "-fwdflat", "no", nullptr));
  if (configuration)
    m_decoder.reset(ps_init(configuration.get()));
  if (!m_decoder)
    return failure("The speech model in " + m_model.acoustics.string() + " could not be loaded.");
  return {};
}

Result<void> SphinxEngine::begin() {
  m_transcript.clear();
  m_hasSpoken = false;
  constexpr std::array<std::int16_t, leadIn> silence{};
  if (ps_start_stream(m_decoder.get()) < 0 || !startUtterance() ||
      ps_process_raw(m_decoder.get(), silence.data(), silence.size(), FALSE, FALSE) < 0)
    return failure("The speech recogniser could not be started.");
  return {};
}

Result<std::string> SphinxEngine::accept(AudioFrames frames) {
  if (ps_process_raw(m_decoder.get(), frames.data(), frames.size(), FALSE, FALSE) < 0)
    return failure("The speech recogniser stopped working.");
  m_length += frames.size();
  const bool isSpeech = ps_get_in_speech(m_decoder.get()) != 0;
  const bool isPause = m_hasSpoken && !isSpeech;
  if (!m_hasSpoken && !isSpeech)
    m_length = 0; // Silence before the first word costs nothing.
  m_hasSpoken = isSpeech;
  if (isPause || m_length >= longestUtterance) {
    endUtterance();
    if (!startUtterance())
      return failure("The speech recogniser stopped working.");
  }
  return m_transcript.with(reading());
}

Result<std::string> SphinxEngine::finish() {
  if (m_isOpen)
    endUtterance();
  return m_transcript.standing();
}

void SphinxEngine::abandon() {
  if (m_isOpen)
    ps_end_utt(m_decoder.get());
  m_isOpen = false;
}

bool SphinxEngine::startUtterance() {
  m_isOpen = ps_start_utt(m_decoder.get()) >= 0;
  m_length = 0;
  return m_isOpen;
}

void SphinxEngine::endUtterance() {
  const bool isRescored = m_length < longestRescored;
  if (!isRescored)
    m_transcript.commit(reading());
  ps_end_utt(m_decoder.get());
  m_isOpen = false;
  if (isRescored)
    m_transcript.commit(reading()); // The last pass happens in here.
}

std::string SphinxEngine::reading() const {
  const char* words = ps_get_hyp(m_decoder.get(), nullptr);
  return words == nullptr ? std::string() : std::string(words);
}

} // namespace notlet
