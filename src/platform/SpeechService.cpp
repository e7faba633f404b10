#include "platform/SpeechService.h"

#include <malloc.h>

namespace notlet {

namespace {

/// Half of what the allocator itself settles on at most.
constexpr int usualTrimThreshold = 32 << 20;

} // namespace

bool SpeechService::Recognizer::isAvailable() const {
  const auto model = m_service->m_backend.modelFor(m_language);
  return !model || model->has_value();
}

std::shared_ptr<SpeechRecognitionTask>
SpeechService::Recognizer::recognitionTask(std::shared_ptr<SpeechRecognitionRequest> request,
                                           SpeechRecognitionTask::Handler handler) const {
  return m_service->begin(m_language, std::move(request), std::move(handler));
}

SpeechService::SpeechService(SpeechBackend& backend, Scheduler& scheduler, QObject* parent)
    : QObject(parent), m_backend(backend), m_scheduler(scheduler) {
}

SpeechService::~SpeechService() {
  if (const auto task = m_current.lock())
    task->giveWay();
}

SpeechService::Recognizer SpeechService::recognizer(const std::string& language) {
  return {*this, language};
}

std::unique_ptr<AudioEngine> SpeechService::makeAudioEngine() {
  return std::make_unique<AudioEngine>(m_backend, m_audioThread, m_mail);
}

std::unique_ptr<AudioEngine> SpeechService::makeMicrophoneCheck() {
  return std::make_unique<AudioEngine>(m_backend, m_checkThread, m_mail);
}

std::shared_ptr<SpeechRecognitionTask> SpeechService::begin(const std::string& language,
                                                            std::shared_ptr<SpeechRecognitionRequest> request,
                                                            SpeechRecognitionTask::Handler handler) {
  if (const auto previous = m_current.lock())
    previous->giveWay();
  ++m_dictations;
  const auto found = m_backend.modelFor(language);
  const auto model = found.value_or(std::nullopt);
  auto task = std::make_shared<SpeechRecognitionTask>(model.value_or(SpeechModel{}), std::move(request),
                                                      std::move(handler), [this] { unloadLater(); });
  m_current = task;
  const Result<void> begun = model   ? m_engineThread.run([this, task] { recognize(*task); })
                             : found ? failure("There is no speech recognition for this language.")
                                     : std::unexpected(found.error());
  if (!begun)
    task->report({.error = begun.error()}, m_mail);
  return task;
}

void SpeechService::unloadLater() {
  m_scheduler.after(idleTime, this, [this, dictations = m_dictations] {
    // Without a thread nobody else has the engine.
    if (dictations == m_dictations && !m_engineThread.run([this] { unload(); }))
      unload();
  });
}

void SpeechService::unload() {
  // The allocator would keep much of what the engine used for whoever asks next. Trimming afterwards is not
  // enough: it leaves the ends of the heaps of threads alone, so these must shrink while the engine goes.
  mallopt(M_TRIM_THRESHOLD, 0);
  m_engine.reset();
  m_loaded.reset();
  mallopt(M_TRIM_THRESHOLD, usualTrimThreshold);
  malloc_trim(0);
}

void SpeechService::recognize(SpeechRecognitionTask& task) {
  if (const auto ready = makeReady(task.model()); !ready)
    return task.report({.error = ready.error()}, m_mail);
  SpeechResult result = read(task);
  if (result.error) {
    m_engine.reset();
    m_loaded.reset();
  }
  if (result.error || result.isFinal)
    task.report(std::move(result), m_mail);
}

Result<void> SpeechService::makeReady(const SpeechModel& model) {
  if (m_loaded == model)
    return {};
  m_engine.reset(); // Before the next: two of them may need more memory than there is.
  m_loaded.reset();
  auto engine = m_backend.makeEngine(model);
  if (!engine)
    return std::unexpected(engine.error());
  if (auto loaded = (*engine)->load(); !loaded)
    return loaded;
  m_engine = std::move(*engine);
  m_loaded = model;
  return {};
}

/// Recognises until the sound ends; the last result, which is empty when nobody waits for it.
SpeechResult SpeechService::read(SpeechRecognitionTask& task) {
  if (const auto begun = m_engine->begin(); !begun)
    return {.error = begun.error()};
  std::string last;
  for (;;) {
    const SpeechRecognitionRequest::Piece piece = task.request().take();
    if (piece.isCancelled || piece.isTooLate) {
      m_engine->abandon();
      if (piece.isCancelled)
        return {};
      return {.error = Error{"This computer is too slow for speech recognition."}};
    }
    auto reading = piece.isEnd ? m_engine->finish() : m_engine->accept(piece.frames);
    if (!reading)
      return {.error = reading.error()};
    if (piece.isEnd)
      return {.bestTranscription = std::move(*reading), .isFinal = true};
    if (!task.request().reportsPartialResults() || *reading == last)
      continue;
    last = std::move(*reading);
    task.report({.bestTranscription = last}, m_mail);
  }
}

} // namespace notlet
