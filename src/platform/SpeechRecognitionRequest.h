#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

#include "platform/AudioInput.h"

namespace notlet {

/// The sound of one dictation on its way from the microphone to the engine.
class SpeechRecognitionRequest {
 public:
  /// Sound that the engine has not taken yet, a minute of it; with more, the engine will never catch up.
  static constexpr std::size_t mostWaitingFrames = std::size_t{60} * AudioInput::sampleRate;

  /// A piece of sound, or why there is none.
  struct Piece {
    std::vector<std::int16_t> frames{};
    bool isEnd = false;
    bool isCancelled = false;
    bool isTooLate = false;
  };

  /// Whether readings are handed out while the sound goes on. Set before the recognition begins.
  void setShouldReportPartialResults(bool reports) { m_reportsPartialResults = reports; }
  [[nodiscard]] bool reportsPartialResults() const { return m_reportsPartialResults; }

  /// Adds sound; never waits for the engine. From any thread.
  void append(AudioFrames frames);
  /// No more sound comes: what was said is read to its end. From any thread.
  void endAudio();
  /// Nobody waits for the reading any more. From any thread.
  void cancel();
  /// Waits for the next piece of sound. On the engine's thread.
  [[nodiscard]] Piece take();

 private:
  bool m_reportsPartialResults = false;

  std::mutex m_mutex;
  std::condition_variable m_hasNews;
  std::deque<std::vector<std::int16_t>> m_waiting;
  std::size_t m_waitingFrames = 0;
  bool m_isEnded = false;
  bool m_isCancelled = false;
  bool m_isTooLate = false;
};

} // namespace notlet
