#include "capture/SpeechRecognizer.h"

#include <QPointer>
#include <algorithm>

namespace notlet {

namespace {

/// "de-DE" for "de_DE.UTF-8@euro"; empty for the locales that mean no language.
std::string languageTag(const std::string& locale) {
  std::string tag = locale.substr(0, locale.find_first_of(".@"));
  std::ranges::replace(tag, '_', '-');
  return tag == "C" || tag == "POSIX" ? std::string() : tag;
}

std::string languageOf(const std::vector<std::string>& preferredLanguages) {
  for (const std::string& language : preferredLanguages)
    if (std::string tag = languageTag(language); !tag.empty())
      return tag;
  return "en-US";
}

} // namespace

Error describe(SpeechRecognizerError error) {
  switch (error) {
  case SpeechRecognizerError::unavailable:
    break;
  }
  return {"Speech recognition is currently unavailable. Try again later."};
}

SpeechRecognizer::SpeechRecognizer(SpeechService* service, const std::vector<std::string>& preferredLanguages,
                                   QObject* parent)
    : QObject(parent), m_service(service) {
  if (m_service)
    m_recognizer = m_service->recognizer(languageOf(preferredLanguages));
}

SpeechRecognizer::~SpeechRecognizer() {
  release();
}

bool SpeechRecognizer::isAvailable() const {
  return m_recognizer && m_recognizer->isAvailable();
}

void SpeechRecognizer::requestSpeechAuthorization(Answer answer) {
  QMetaObject::invokeMethod(this, [answer = std::move(answer)] { answer(true); }, Qt::QueuedConnection);
}

void SpeechRecognizer::requestMicrophoneAuthorization(Answer answer) {
  if (!m_service)
    return requestSpeechAuthorization(std::move(answer));
  m_microphoneCheck = m_service->makeMicrophoneCheck();
  m_microphoneCheck->probe(
      [this, answer = std::move(answer)](const std::expected<void, AudioError>& outcome) {
        const bool isDenied = !outcome && outcome.error().fault == AudioFault::accessDenied;
        const auto check =
            std::move(m_microphoneCheck); // Until the answer is told, which may be the end of this.
        answer(!isDenied);
      });
}

void SpeechRecognizer::startRecording(OnTranscript onTranscript, OnStarted onStarted) {
  if (!m_recognizer || !m_recognizer->isAvailable() || m_isRecording || isStarting())
    return onStarted(std::unexpected(describe(SpeechRecognizerError::unavailable)));
  m_onTranscript = std::move(onTranscript);
  m_onStarted = std::move(onStarted);
  m_audioEngine = m_service->makeAudioEngine();
  m_recognitionRequest = std::make_shared<SpeechRecognitionRequest>();
  m_recognitionRequest->setShouldReportPartialResults(true);
  m_recognitionTask = m_recognizer->recognitionTask(m_recognitionRequest,
                                                    [this](const SpeechResult& result) { handle(result); });
  m_audioEngine->removeTap();
  m_audioEngine->installTap(
      [request = m_recognitionRequest](AudioFrames frames) { request->append(frames); });
  m_audioEngine->start({
      .started = [this] { audioStarted(); },
      .failed = [this](const Error& error) { fail(error); },
      .ended = [this] { m_recognitionRequest->endAudio(); },
      .levelChanged = [this](double level) { Q_EMIT levelChanged(level); },
  });
  Q_EMIT recordingChanged();
}

void SpeechRecognizer::audioStarted() {
  m_isRecording = true;
  const auto onStarted = std::exchange(m_onStarted, nullptr);
  const QPointer<SpeechRecognizer> self(this);
  onStarted({});
  if (self)
    Q_EMIT recordingChanged();
}

void SpeechRecognizer::handle(const SpeechResult& result) {
  const QPointer<SpeechRecognizer> self(this);
  if (const auto onTranscript = m_onTranscript; onTranscript && result.bestTranscription)
    onTranscript(*result.bestTranscription);
  if (!self)
    return;
  if (result.error)
    fail(*result.error);
  else if (result.isFinal || result.isTakenOver)
    stopRecording();
}

/// A failure before the start is its outcome; a later one is told to whoever follows the recording.
void SpeechRecognizer::fail(const Error& error) {
  const auto onStarted = std::exchange(m_onStarted, nullptr);
  const QPointer<SpeechRecognizer> self(this);
  release();
  Q_EMIT recordingChanged();
  if (onStarted)
    onStarted(std::unexpected(error));
  else if (self)
    Q_EMIT failed(error);
}

void SpeechRecognizer::stopRecording() {
  if (!m_audioEngine)
    return;
  release();
  Q_EMIT recordingChanged();
}

void SpeechRecognizer::release() {
  if (m_recognitionTask)
    m_recognitionTask->cancel();
  if (m_recognitionRequest)
    m_recognitionRequest->endAudio();
  if (m_audioEngine) {
    m_audioEngine->stop();
    m_audioEngine->removeTap();
  }
  m_recognitionTask.reset();
  m_recognitionRequest.reset();
  m_audioEngine.reset();
  m_isRecording = false;
  m_onStarted = nullptr;
  m_onTranscript = nullptr;
}

} // namespace notlet
