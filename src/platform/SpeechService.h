#pragma once

#include <QObject>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "platform/AudioEngine.h"
#include "platform/JobThread.h"
#include "platform/MainThreadMail.h"
#include "platform/Scheduler.h"
#include "platform/SpeechBackend.h"
#include "platform/SpeechRecognitionTask.h"

namespace notlet {

/// Understands speech, one dictation at a time, with one engine for the whole process.
///
/// The engine is loaded by the first dictation, on a thread of its own while the microphone is heard already,
/// and stays for the next. After ten minutes without a dictation it goes. There is no thread between
/// dictations.
class SpeechService : public QObject {
  Q_OBJECT

 public:
  static constexpr std::chrono::minutes idleTime{10};

  /// The recogniser of one language.
  class Recognizer {
   public:
    Recognizer(SpeechService& service, std::string language)
        : m_service(&service), m_language(std::move(language)) {}

    [[nodiscard]] const std::string& language() const { return m_language; }
    /// Whether there is something on disk that understands the language, or should according to the user.
    [[nodiscard]] bool isAvailable() const;
    /// Begins to recognise what is appended to the request. A dictation in progress is told that it is taken
    /// over. The task is to be cancelled in the end, also after a final result or an error.
    [[nodiscard]] std::shared_ptr<SpeechRecognitionTask>
    recognitionTask(std::shared_ptr<SpeechRecognitionRequest> request,
                    SpeechRecognitionTask::Handler handler) const;

   private:
    SpeechService* m_service;
    std::string m_language;
  };

  /// The two outlive the service, and the service everything that it made.
  SpeechService(SpeechBackend& backend, Scheduler& scheduler, QObject* parent = nullptr);
  /// Waits for an engine that is just being loaded.
  ~SpeechService() override;

  /// For a language tag such as "en-US".
  [[nodiscard]] Recognizer recognizer(const std::string& language);
  [[nodiscard]] std::unique_ptr<AudioEngine> makeAudioEngine();
  /// For AudioEngine::probe(), which does not wait for a recording in progress.
  [[nodiscard]] std::unique_ptr<AudioEngine> makeMicrophoneCheck();

 private:
  [[nodiscard]] std::shared_ptr<SpeechRecognitionTask>
  begin(const std::string& language, std::shared_ptr<SpeechRecognitionRequest> request,
        SpeechRecognitionTask::Handler handler);
  void unloadLater();

  // On the engine's thread.
  void recognize(SpeechRecognitionTask& task);
  [[nodiscard]] Result<void> makeReady(const SpeechModel& model);
  [[nodiscard]] SpeechResult read(SpeechRecognitionTask& task);
  void unload();

  SpeechBackend& m_backend;
  Scheduler& m_scheduler;
  std::weak_ptr<SpeechRecognitionTask> m_current;
  /// Tells an idle time that another dictation followed.
  std::uint64_t m_dictations = 0;

  // Of the engine's thread.
  std::unique_ptr<SpeechEngine> m_engine;
  std::optional<SpeechModel> m_loaded;

  // The threads go first: they use everything above.
  MainThreadMail m_mail;
  JobThread m_audioThread;
  JobThread m_checkThread;
  JobThread m_engineThread;
};

} // namespace notlet
