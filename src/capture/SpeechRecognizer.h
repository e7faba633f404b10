#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/SpeechService.h"

namespace notlet {

/// The one way in which dictation itself fails.
enum class SpeechRecognizerError { unavailable };

[[nodiscard]] Error describe(SpeechRecognizerError error);

/// Dictation for one composer: turns what the microphone hears into text until it is stopped.
///
/// Everything is called and answered on the main thread. Once it is destroyed nobody is called any more.
class SpeechRecognizer : public QObject {
  Q_OBJECT

 public:
  /// Takes the best reading of everything said since the start, UTF-8; it replaces those before it.
  using OnTranscript = std::function<void(const std::string&)>;
  /// Told once how the start went, unless it was stopped before.
  using OnStarted = std::function<void(const Result<void>&)>;
  using Answer = std::function<void(bool)>;

  /// Dictates in the first of the user's preferred languages (locale names such as "de_DE.UTF-8" or tags such
  /// as "de-DE"), in "en-US" when there is none. Without a service there is no recogniser.
  SpeechRecognizer(SpeechService* service, const std::vector<std::string>& preferredLanguages,
                   QObject* parent = nullptr);
  ~SpeechRecognizer() override;

  [[nodiscard]] bool isRecording() const { return m_isRecording; }
  /// Between a start and its outcome, which may take seconds.
  [[nodiscard]] bool isStarting() const { return m_audioEngine && !m_isRecording; }
  /// None when the desktop has no recogniser for the language.
  [[nodiscard]] const std::optional<SpeechService::Recognizer>& recognizer() const { return m_recognizer; }
  /// Whether there is a recogniser that could start now. Looks at a few files.
  [[nodiscard]] bool isAvailable() const;

  /// Whether the desktop lets the program recognise speech: always, for nothing leaves the machine.
  void requestSpeechAuthorization(Answer answer);
  /// False when the sound service refuses the microphone. May take seconds.
  void requestMicrophoneAuthorization(Answer answer);

  /// Begins to listen. Unavailable, or recording or starting already: the outcome is told at once and nothing
  /// changes. Otherwise it comes later; a dictation in another composer stops.
  void startRecording(OnTranscript onTranscript, OnStarted onStarted);
  /// Nothing is transcribed any more when this returns. May be called at any time.
  void stopRecording();

 Q_SIGNALS:
  /// isRecording() or isStarting() differs.
  void recordingChanged();
  /// The recording stopped by itself, for a reason that the user has to know.
  void failed(const notlet::Error& error);
  /// How loud it is, 0 to 1; at most 25 times a second, while recording.
  void levelChanged(double level);

 private:
  void handle(const SpeechResult& result);
  void audioStarted();
  void fail(const Error& error);
  void release();

  SpeechService* m_service;
  bool m_isRecording = false;
  std::optional<SpeechService::Recognizer> m_recognizer;
  // Those three exist while recording or starting.
  std::unique_ptr<AudioEngine> m_audioEngine;
  std::shared_ptr<SpeechRecognitionRequest> m_recognitionRequest;
  std::shared_ptr<SpeechRecognitionTask> m_recognitionTask;

  OnTranscript m_onTranscript;
  OnStarted m_onStarted;
  /// Exists while the user's permission is asked for.
  std::unique_ptr<AudioEngine> m_microphoneCheck;
};

} // namespace notlet
