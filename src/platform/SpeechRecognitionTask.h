#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "core/Error.h"
#include "platform/MainThreadMail.h"
#include "platform/SpeechModel.h"
#include "platform/SpeechRecognitionRequest.h"

namespace notlet {

/// What the recogniser makes of a dictation. Each result replaces those before it.
struct SpeechResult {
  /// The best reading of everything said so far, UTF-8.
  std::optional<std::string> bestTranscription{};
  bool isFinal = false;
  /// Nothing comes after an error.
  std::optional<Error> error{};
  /// Another dictation took the recogniser over; nothing comes after this.
  bool isTakenOver = false;
};

/// One dictation being recognised, held by the thread that asked for it and the thread that does it.
class SpeechRecognitionTask final : public MainThreadMail::Sender,
                                    public std::enable_shared_from_this<SpeechRecognitionTask> {
 public:
  /// Called on the main thread with the newest result.
  using Handler = std::function<void(const SpeechResult&)>;
  /// Told on the main thread that the task is over.
  using Ended = std::function<void()>;

  SpeechRecognitionTask(SpeechModel model, std::shared_ptr<SpeechRecognitionRequest> request, Handler handler,
                        Ended ended);

  // On the main thread.
  /// The handler is not called any more, whatever is on its way. May be called again.
  void cancel();
  /// Tells the handler that another dictation has the recogniser now, and cancels.
  void giveWay();
  void deliver() override;

  // On the engine's thread.
  [[nodiscard]] const SpeechModel& model() const { return m_model; }
  [[nodiscard]] SpeechRecognitionRequest& request() const { return *m_request; }
  /// Leaves the result for the main thread, in place of one that was not taken yet.
  void report(SpeechResult result, MainThreadMail& mail);

 private:
  const SpeechModel m_model;
  const std::shared_ptr<SpeechRecognitionRequest> m_request;
  Handler m_handler; // Of the main thread, like the next.
  Ended m_ended;

  std::mutex m_mutex;
  std::optional<SpeechResult> m_news;
};

} // namespace notlet
