#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "platform/AudioInput.h"

namespace notlet {

using Moment = std::chrono::steady_clock::time_point;

/// What is said before the microphone, at the pace of real sound; silence while nothing is.
class Voice {
 public:
  using Piece = std::vector<std::int16_t>;

  /// Begins to speak.
  void say(Piece sound) {
    const std::lock_guard lock(m_mutex);
    m_sound = std::move(sound);
    m_said = 0;
    m_end.reset();
  }
  /// The moment at which the last frame was spoken; nothing before.
  [[nodiscard]] std::optional<Moment> end() {
    const std::lock_guard lock(m_mutex);
    return m_end;
  }
  /// The next piece, which ends at this moment.
  [[nodiscard]] Piece next(Moment end) {
    const std::lock_guard lock(m_mutex);
    Piece piece(AudioInput::chunkFrames);
    const std::size_t count = std::min(piece.size(), m_sound.size() - m_said);
    if (count == 0)
      return piece;
    std::copy_n(m_sound.begin() + static_cast<std::ptrdiff_t>(m_said), count, piece.begin());
    m_said += count;
    if (m_said == m_sound.size())
      m_end = end - std::chrono::microseconds(1'000'000 * (piece.size() - count) / AudioInput::sampleRate);
    return piece;
  }

 private:
  std::mutex m_mutex;
  Piece m_sound;
  std::size_t m_said = 0;
  std::optional<Moment> m_end;
};

/// Hands a voice over as a microphone does: a piece when it is complete.
class PlayedMicrophone final : public AudioInput {
 public:
  explicit PlayedMicrophone(Voice& voice) : m_voice(voice) {}

  std::expected<void, AudioError> listen(const Listener& listener) override {
    constexpr std::chrono::microseconds pieceLength{1'000'000 * chunkFrames / sampleRate};
    listener.started();
    for (Moment end = std::chrono::steady_clock::now() + pieceLength; !isStoppedBefore(end);
         end += pieceLength)
      listener.heard(m_voice.next(end));
    return {};
  }
  std::expected<void, AudioError> probe() override { return {}; }
  void stop() override {
    const std::lock_guard lock(m_mutex);
    m_isStopped = true;
    m_hasStopped.notify_all();
  }

 private:
  [[nodiscard]] bool isStoppedBefore(Moment moment) {
    std::unique_lock lock(m_mutex);
    return m_hasStopped.wait_until(lock, moment, [this] { return m_isStopped; });
  }

  Voice& m_voice;
  std::mutex m_mutex;
  std::condition_variable m_hasStopped;
  bool m_isStopped = false;
};

} // namespace notlet
