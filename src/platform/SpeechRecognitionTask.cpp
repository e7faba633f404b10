#include "platform/SpeechRecognitionTask.h"

namespace notlet {

SpeechRecognitionTask::SpeechRecognitionTask(SpeechModel model,
                                             std::shared_ptr<SpeechRecognitionRequest> request,
                                             Handler handler, Ended ended)
    : m_model(std::move(model)),
      m_request(std::move(request)),
      m_handler(std::move(handler)),
      m_ended(std::move(ended)) {
}

void SpeechRecognitionTask::cancel() {
  m_request->cancel();
  m_handler = nullptr;
  if (const auto ended = std::exchange(m_ended, nullptr))
    ended();
}

void SpeechRecognitionTask::giveWay() {
  const auto keep = shared_from_this();
  const auto handler = m_handler;
  cancel();
  if (handler)
    handler({.isTakenOver = true});
}

void SpeechRecognitionTask::deliver() {
  std::optional<SpeechResult> news;
  {
    const std::lock_guard lock(m_mutex);
    news.swap(m_news);
  }
  // A copy, because whoever is told may cancel.
  if (const auto handler = m_handler; handler && news)
    handler(*news);
}

void SpeechRecognitionTask::report(SpeechResult result, MainThreadMail& mail) {
  {
    const std::lock_guard lock(m_mutex);
    const bool isPosted = m_news.has_value();
    if (isPosted && !result.bestTranscription)
      result.bestTranscription = std::move(m_news->bestTranscription);
    m_news = std::move(result);
    if (isPosted)
      return;
  }
  mail.post(weak_from_this());
}

} // namespace notlet
