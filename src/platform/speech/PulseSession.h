#pragma once

#include <pulse/pulseaudio.h>

#include <optional>
#include <vector>

#include "platform/AudioInput.h"
#include "platform/speech/PulseInput.h"

namespace notlet {

/// One connection to the sound service, driven by the thread that runs it.
///
/// connect ─► (probe: look at the default source ─► done)
///         └► open a stream ─► look at its source ─► listening ─► (moved: look again)
class PulseSession {
 public:
  /// Ends when the descriptor becomes readable.
  PulseSession(const PulseInput::Patience& patience, int stopping);
  PulseSession(const PulseSession&) = delete;
  PulseSession& operator=(const PulseSession&) = delete;
  ~PulseSession();

  [[nodiscard]] std::expected<void, AudioError> probe();
  [[nodiscard]] std::expected<void, AudioError> listen(const AudioInput::Listener& listener);

 private:
  [[nodiscard]] std::expected<void, AudioError> run();
  void connect();
  void contextChanged();
  void openStream();
  void streamChanged();
  void checkSource();
  void sourceFound(const pa_source_info* source);
  void sourceRefused();
  void beginListening();
  void readFrames();
  void hear(const std::int16_t* frames, std::size_t count);

  void waitAtMost(std::chrono::milliseconds time, AudioFault fault);
  void end(std::expected<void, AudioError> outcome);
  void fail(AudioFault fault, const char* detail) { end(std::unexpected(AudioError{fault, detail})); }
  /// Fails with the service's own reason, or with this when that is none of the known ones.
  void failAsService(AudioFault otherwise);

  PulseInput::Patience m_patience;
  const AudioInput::Listener* m_listener = nullptr;
  std::optional<std::expected<void, AudioError>> m_outcome;
  bool m_isListening = false;
  /// The stream hears a microphone, not what comes out of the loudspeakers.
  bool m_hearsMicrophone = false;
  std::vector<std::int16_t> m_frames;

  AudioFault m_faultOfTimer = AudioFault::noAnswer;
  pa_mainloop* m_loop = nullptr;
  pa_context* m_context = nullptr;
  pa_stream* m_stream = nullptr;
  pa_time_event* m_timer = nullptr;
};

} // namespace notlet
