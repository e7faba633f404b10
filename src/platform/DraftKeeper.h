#pragma once

#include <QObject>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "core/Error.h"
#include "platform/Scheduler.h"

namespace notlet {

/// Keeps the text that is being typed on one surface in a file of its own, so that it survives a crash.
///
/// The file holds the bare text in UTF-8. It is written half a second after the first key that it lacks, away
/// from the main thread, and removed as soon as the text is empty. What the disk does not take is tried again
/// every few seconds.
class DraftKeeper : public QObject {
  Q_OBJECT

 public:
  /// `directory` is made when needed; without one, drafts live as long as the process.
  DraftKeeper(std::optional<std::filesystem::path> directory, const std::string& surface,
              Scheduler& scheduler, QObject* parent = nullptr);
  /// Writes what is not written yet.
  ~DraftKeeper() override;

  /// The kept text, empty when there is none. A draft that cannot be read is set aside under another name
  /// and the error says which.
  [[nodiscard]] Result<std::string> restore();
  /// Keeps this text from now on; an empty one removes the file.
  void keep(std::string text);
  /// Writes now what is not written yet and waits for it.
  void flush();
  /// Whether an end of the program now would lose no text.
  [[nodiscard]] bool isSafe();

 Q_SIGNALS:
  /// The text could not be written; the reason is a sentence. Empty once a later write succeeds.
  void reported(const std::string& reason);

 private Q_SLOTS:
  void deliverReport();

 private:
  void writeAfter(std::chrono::milliseconds delay, bool& isScheduled);
  void write();
  void writeAll();
  void awaitWriter();

  std::optional<std::filesystem::path> m_file; // Never changes.
  Scheduler& m_scheduler;
  std::optional<std::string> m_pending;
  bool m_isScheduled = false;
  bool m_isRetryScheduled = false;

  // One thread at a time, so that an older text never overwrites a newer one. It ends when nothing is left to
  // write, or the disk takes no more; what both threads use stands under the mutex.
  std::mutex m_mutex;
  std::condition_variable m_isDone;
  /// The newest text that the file lacks and that no thread is at.
  std::optional<std::string> m_next;
  std::string m_report;
  bool m_isWriting = false;
  std::jthread m_writer;
};

} // namespace notlet
