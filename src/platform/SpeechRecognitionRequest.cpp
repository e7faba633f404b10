#include "platform/SpeechRecognitionRequest.h"

namespace notlet {

void SpeechRecognitionRequest::append(AudioFrames frames) {
  {
    const std::lock_guard lock(m_mutex);
    if (m_isEnded || m_isCancelled)
      return;
    m_isTooLate = m_isTooLate || m_waitingFrames + frames.size() > mostWaitingFrames;
    if (!m_isTooLate) {
      m_waiting.emplace_back(frames.begin(), frames.end());
      m_waitingFrames += frames.size();
    }
  }
  m_hasNews.notify_one();
}

void SpeechRecognitionRequest::endAudio() {
  {
    const std::lock_guard lock(m_mutex);
    m_isEnded = true;
  }
  m_hasNews.notify_one();
}

void SpeechRecognitionRequest::cancel() {
  {
    const std::lock_guard lock(m_mutex);
    m_isCancelled = true;
    m_waiting.clear();
    m_waitingFrames = 0;
  }
  m_hasNews.notify_one();
}

SpeechRecognitionRequest::Piece SpeechRecognitionRequest::take() {
  std::unique_lock lock(m_mutex);
  m_hasNews.wait(lock, [this] { return !m_waiting.empty() || m_isEnded || m_isCancelled || m_isTooLate; });
  Piece piece{.isCancelled = m_isCancelled, .isTooLate = m_isTooLate};
  if (m_waiting.empty()) {
    piece.isEnd = m_isEnded;
    return piece;
  }
  piece.frames = std::move(m_waiting.front());
  m_waiting.pop_front();
  m_waitingFrames -= piece.frames.size();
  return piece;
}

} // namespace notlet
