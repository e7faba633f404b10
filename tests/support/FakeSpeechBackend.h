#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>

#include "platform/SpeechBackend.h"

namespace notlet {

/// A microphone that hears what the test says, and an engine that understands what the test tells it to.
/// Everything may be changed while it is used.
class FakeSpeechBackend final : public SpeechBackend {
 public:
  struct Script {
    /// What the engine makes of each piece of sound in turn; the last holds for all that follow.
    std::vector<std::string> readings{"and", "and eggs"};
    std::string lastReading = "and eggs please";
    std::optional<Error> loadError;
    std::optional<Error> acceptError;
    /// The engine is not ready while this is set.
    bool holdsLoad = false;
    /// The microphone refuses to open, or goes away when it is open.
    std::optional<AudioError> fault;
    /// There is no more sound after what was said.
    bool isOver = false;
    /// The microphone does not answer while this is set.
    bool holdsStart = false;

    int loads = 0;
    int begins = 0;
    int abandons = 0;
    int unloads = 0;
    int opened = 0;
    int closed = 0;
    /// Pieces of sound that nobody has heard yet.
    std::deque<std::vector<std::int16_t>> said;
  };

  /// Reads or changes the script while the threads stand still.
  template<typename Use>
  auto with(Use use) {
    const std::lock_guard lock(m_mutex);
    m_hasChanged.notify_all();
    return use(m_script);
  }

  void say(int pieces, std::int16_t loudness = 1000) {
    with([&](Script& script) {
      script.said.insert(script.said.end(), static_cast<std::size_t>(pieces),
                         std::vector<std::int16_t>(AudioInput::chunkFrames, loudness));
    });
  }

  /// What modelFor() says; one that differs from the last needs another engine. Of the main thread.
  Result<std::optional<SpeechModel>> model{SpeechModel(SpeechProgram{{"first"}})};
  /// The language that was asked for last.
  mutable std::string language;

  [[nodiscard]] Result<std::optional<SpeechModel>> modelFor(const std::string& asked) const override {
    language = asked;
    return model;
  }
  [[nodiscard]] Result<std::unique_ptr<AudioInput>> makeAudioInput() override {
    return std::make_unique<Microphone>(*this);
  }
  [[nodiscard]] Result<std::unique_ptr<SpeechEngine>> makeEngine(const SpeechModel&) override {
    return std::make_unique<Engine>(*this);
  }

 private:
  class Microphone final : public AudioInput {
   public:
    explicit Microphone(FakeSpeechBackend& backend) : m_backend(backend) {}

    std::expected<void, AudioError> listen(const Listener& listener) override {
      std::unique_lock lock(m_backend.m_mutex);
      Script& script = m_backend.m_script;
      ++script.opened;
      m_backend.m_hasChanged.wait(lock, [&] { return m_isStopped || !script.holdsStart; });
      if (!m_isStopped && !script.fault) {
        lock.unlock();
        listener.started();
        lock.lock();
      }
      for (;;) {
        m_backend.m_hasChanged.wait(
            lock, [&] { return m_isStopped || script.fault || script.isOver || !script.said.empty(); });
        if (m_isStopped || script.fault || script.said.empty())
          break;
        const auto piece = std::move(script.said.front());
        script.said.pop_front();
        lock.unlock();
        listener.heard(piece);
        lock.lock();
      }
      ++script.closed;
      const auto fault = script.fault;
      lock.unlock();
      if (fault)
        return std::unexpected(*fault);
      // A piece that was on its way when the microphone was closed.
      listener.heard(std::vector<std::int16_t>(chunkFrames, 1000));
      return {};
    }
    std::expected<void, AudioError> probe() override {
      std::unique_lock lock(m_backend.m_mutex);
      const Script& script = m_backend.m_script;
      m_backend.m_hasChanged.wait(lock, [&] { return m_isStopped || !script.holdsStart; });
      if (script.fault)
        return std::unexpected(*script.fault);
      return {};
    }
    void stop() override {
      m_backend.with([&](Script&) { m_isStopped = true; });
    }

   private:
    FakeSpeechBackend& m_backend;
    bool m_isStopped = false;
  };

  class Engine final : public SpeechEngine {
   public:
    explicit Engine(FakeSpeechBackend& backend) : m_backend(backend) {}
    ~Engine() override {
      m_backend.with([](Script& script) { ++script.unloads; });
    }

    Result<void> load() override {
      std::unique_lock lock(m_backend.m_mutex);
      Script& script = m_backend.m_script;
      ++script.loads;
      m_backend.m_hasChanged.wait(lock, [&] { return !script.holdsLoad; });
      if (script.loadError)
        return std::unexpected(*script.loadError);
      return {};
    }
    Result<void> begin() override {
      m_next = 0;
      m_backend.with([](Script& script) { ++script.begins; });
      return {};
    }
    Result<std::string> accept(AudioFrames) override {
      return m_backend.with([&](Script& script) -> Result<std::string> {
        if (script.acceptError)
          return std::unexpected(*script.acceptError);
        if (script.readings.empty())
          return std::string();
        return script.readings[std::min(m_next++, script.readings.size() - 1)];
      });
    }
    Result<std::string> finish() override {
      return m_backend.with([](Script& script) { return script.lastReading; });
    }
    void abandon() override {
      m_backend.with([](Script& script) { ++script.abandons; });
    }

   private:
    FakeSpeechBackend& m_backend;
    std::size_t m_next = 0;
  };

  std::mutex m_mutex;
  std::condition_variable m_hasChanged;
  Script m_script;
};

} // namespace notlet
