#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <functional>
#include <span>
#include <string>

#include "core/Error.h"

namespace notlet {

/// Why there is nothing to hear.
enum class AudioFault {
  /// No sound service runs.
  noService,
  accessDenied,
  /// There is no input, or only what comes out of the loudspeakers.
  noMicrophone,
  /// Another program has the microphone for itself.
  busy,
  /// The sound service keeps silent.
  noAnswer,
  /// The microphone was there and went away.
  lost,
  /// The microphone is open and nothing comes, not even silence.
  noFrames,
  /// A part of the program is missing; `detail` is a sentence.
  notInstalled,
  /// Nothing was tried; `detail` is a sentence.
  notStarted,
  other,
};

struct AudioError {
  AudioFault fault = AudioFault::other;
  /// The sound service's own words.
  std::string detail;

  bool operator==(const AudioError&) const = default;
};

/// The fault in words for the user.
[[nodiscard]] Error describe(const AudioError& error);

/// Sound as the recogniser wants it: one channel, 16,000 frames a second, signed 16 bit.
using AudioFrames = std::span<const std::int16_t>;

/// A microphone, for one use.
class AudioInput {
 public:
  static constexpr int sampleRate = 16000;
  /// Frames are handed over in pieces of this many, 64 ms.
  static constexpr std::size_t chunkFrames = 1024;

  /// Who hears it, on the thread that listens.
  struct Listener {
    /// The microphone is open.
    std::function<void()> started;
    std::function<void(AudioFrames)> heard;
  };

  virtual ~AudioInput() = default;
  /// Listens on the calling thread until stop() is called or something fails, which may be at once.
  [[nodiscard]] virtual std::expected<void, AudioError> listen(const Listener& listener) = 0;
  /// Whether listening would find a microphone, without opening it. May take as long as a start.
  [[nodiscard]] virtual std::expected<void, AudioError> probe() = 0;
  /// Ends listening or probing soon, also when it has not begun yet. May be called from any thread.
  virtual void stop() = 0;
};

} // namespace notlet
