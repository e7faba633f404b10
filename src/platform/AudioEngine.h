#pragma once

#include <functional>
#include <memory>

#include "core/Error.h"
#include "platform/AudioInput.h"

namespace notlet {

class JobThread;
class MainThreadMail;
class SpeechBackend;

/// The microphone as the main thread handles it: everything that may take time happens on the audio thread.
class AudioEngine {
 public:
  /// What happens, told on the main thread and never after stop().
  struct Events {
    std::function<void()> started;
    /// It did not start, or stopped by itself.
    std::function<void(const Error&)> failed;
    /// The sound is over: everything has gone to the tap, and no more comes.
    std::function<void()> ended{};
    /// How loud it is, 0 to 1; at most 25 times for each second of sound.
    std::function<void(double)> levelChanged;
  };
  using Tap = std::function<void(AudioFrames)>;
  using Answer = std::function<void(const std::expected<void, AudioError>&)>;

  /// The three outlive the engine.
  AudioEngine(SpeechBackend& backend, JobThread& audioThread, MainThreadMail& mail);
  AudioEngine(const AudioEngine&) = delete;
  AudioEngine& operator=(const AudioEngine&) = delete;
  ~AudioEngine();

  /// Has all sound go to the tap, on the audio thread.
  void installTap(Tap tap);
  /// The tap is not called any more when this returns.
  void removeTap();

  void start(Events events);
  /// Asks whether there is a microphone, without opening it; the answer comes on the main thread.
  void probe(Answer answer);
  /// Does not wait for the audio thread, but it hands over nothing more.
  void stop();

 private:
  class Session;

  void run(void (Session::*job)());

  SpeechBackend& m_backend;
  JobThread& m_audioThread;
  MainThreadMail& m_mail;
  Tap m_tap;
  std::shared_ptr<Session> m_session;
};

} // namespace notlet
