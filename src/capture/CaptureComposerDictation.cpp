#include "capture/CaptureComposer.h"
#include "core/Text.h"

namespace notlet {

namespace {

/// What stands between a draft and the words that are added to it.
std::string_view separatorAfter(const std::string& text) {
  return text.empty() || isWhiteSpace(lastCodePoint(text).value) ? "" : " ";
}

} // namespace

void CaptureComposer::followRecognizer() {
  connect(&m_speechRecognizer, &SpeechRecognizer::recordingChanged, this, [this] {
    if (!m_speechRecognizer.isStarting())
      update([this](State& state) {
        state.dictation = m_speechRecognizer.isRecording() ? Dictation::recording : Dictation::off;
      });
  });
  connect(&m_speechRecognizer, &SpeechRecognizer::failed, this,
          [this](const Error& error) { failDictation(error.message); });
  connect(&m_speechRecognizer, &SpeechRecognizer::levelChanged, this, &CaptureComposer::inputLevelChanged);
}

void CaptureComposer::handleMicTap() {
  if (m_state.dictation != Dictation::off)
    return stopDictation();
  if (!m_speechRecognizer.isAvailable())
    return failDictation(describe(SpeechRecognizerError::unavailable).message);
  ++m_micTaps;
  update([](State& state) { state.dictation = Dictation::starting; });
  m_speechRecognizer.requestSpeechAuthorization(ifStillWanted(&CaptureComposer::askForMicrophone));
}

SpeechRecognizer::Answer CaptureComposer::ifStillWanted(void (CaptureComposer::*next)(bool)) {
  return [this, next, tap = m_micTaps](bool isGranted) {
    if (tap == m_micTaps && m_state.dictation == Dictation::starting)
      (this->*next)(isGranted);
  };
}

void CaptureComposer::askForMicrophone(bool speechIsGranted) {
  if (!speechIsGranted)
    return failDictation("Speech recognition access is required to dictate your thoughts.");
  m_speechRecognizer.requestMicrophoneAuthorization(ifStillWanted(&CaptureComposer::startRecording));
}

// Every transcript is a new reading of all that was said, so each replaces the one before it.
void CaptureComposer::startRecording(bool microphoneIsGranted) {
  if (!microphoneIsGranted)
    return failDictation("Microphone access is required to dictate your thoughts.");
  setInputFocused(false);
  std::string base = m_state.input;
  base += separatorAfter(base);
  m_speechRecognizer.startRecording(
      [this, base = std::move(base)](const std::string& transcript) { write(base + transcript); },
      [this](const Result<void>& started) {
        if (!started)
          failDictation(started.error().message);
      });
}

void CaptureComposer::stopDictation() {
  m_speechRecognizer.stopRecording();
  update([](State& state) { state.dictation = Dictation::off; });
}

// Who cannot dictate writes.
void CaptureComposer::failDictation(const std::string& message) {
  update([&message](State& state) {
    state.dictation = Dictation::off;
    state.inputFocused = true;
    state.speechError = message;
  });
}

void CaptureComposer::dismissSpeechError() {
  update([](State& state) { state.speechError.reset(); });
}

} // namespace notlet
