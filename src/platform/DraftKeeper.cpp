#include "platform/DraftKeeper.h"

#include <chrono>
#include <system_error>
#include <utility>

#include "core/Text.h"
#include "core/Timestamp.h"
#include "platform/DurableFile.h"

namespace notlet {

namespace {

constexpr std::chrono::milliseconds writeDelay{500};
/// Between two tries to write what the disk does not take.
constexpr std::chrono::milliseconds retryDelay{3000};
/// In bytes. Larger ones are set aside: no editor could show them.
constexpr std::size_t largestDraft = std::size_t{256} << 20;

/// Brings the file to hold the text; gives the reason when that fails, else nothing.
std::string bringToDisk(const std::filesystem::path& file, const std::string& text) {
  if (text.empty()) {
    std::error_code error;
    std::filesystem::remove(file, error);
    return error ? "The draft “" + file.string() + "” could not be removed: " + error.message() + "." : "";
  }
  auto written = makePrivateDirectory(file.parent_path());
  if (written)
    written = writeDurably(file, text);
  return written ? "" : "What you type is not safe on disk: " + written.error().message;
}

/// Gives an unreadable draft another name, so that the next one does not overwrite it.
Error setAside(const std::filesystem::path& file, const std::string& reason) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(currentTime()).time_since_epoch().count();
  std::filesystem::path other = file;
  other += ".unreadable-" + std::to_string(seconds);
  std::error_code error;
  std::filesystem::rename(file, other, error);
  return Error{error ? reason : reason + " It was set aside as “" + other.string() + "”."};
}

} // namespace

DraftKeeper::DraftKeeper(std::optional<std::filesystem::path> directory, const std::string& surface,
                         Scheduler& scheduler, QObject* parent)
    : QObject(parent), m_scheduler(scheduler) {
  if (directory)
    m_file = *directory / (surface + ".txt");
}

DraftKeeper::~DraftKeeper() {
  flush();
}

Result<std::string> DraftKeeper::restore() {
  if (!m_file)
    return std::string();
  const std::filesystem::path& file = *m_file;
  auto contents = readWholeFile(file, largestDraft);
  if (!contents)
    return std::unexpected(setAside(file, contents.error().message));
  std::string text = std::move(*contents).value_or(std::string());
  if (!isValidUtf8(text))
    return std::unexpected(setAside(file, "The draft “" + file.string() + "” is not UTF-8 text."));
  return text;
}

void DraftKeeper::keep(std::string text) {
  m_pending = std::move(text);
  if (!m_file)
    return;
  // What was saved must not come back, however soon after the program ends.
  if (m_pending->empty())
    return write();
  writeAfter(writeDelay, m_isScheduled);
}

void DraftKeeper::writeAfter(std::chrono::milliseconds delay, bool& isScheduled) {
  if (std::exchange(isScheduled, true))
    return;
  m_scheduler.after(delay, this, [this, &isScheduled] {
    isScheduled = false;
    write();
  });
}

void DraftKeeper::write() {
  if (!m_file)
    return;
  {
    const std::lock_guard lock(m_mutex);
    if (m_pending)
      m_next = std::exchange(m_pending, std::nullopt);
    // A thread that is at work takes this text after the one it is at.
    if (!m_next || std::exchange(m_isWriting, true))
      return;
  }
  try {
    m_writer = std::jthread([this] { writeAll(); });
  } catch (const std::system_error&) {
    writeAll(); // The system has no thread to spare: a key that waits for the disk is better than a lost
                // text.
  }
}

/// Runs on the writing thread, which this object outlives.
void DraftKeeper::writeAll() {
  std::unique_lock lock(m_mutex);
  while (auto text = std::exchange(m_next, std::nullopt)) {
    lock.unlock();
    std::string report = bringToDisk(*m_file, *text);
    lock.lock();
    m_report = std::move(report);
    QMetaObject::invokeMethod(this, "deliverReport", Qt::QueuedConnection);
    if (m_report.empty() || m_next)
      continue;
    m_next = std::move(text); // Until the next try.
    break;
  }
  m_isWriting = false;
  m_isDone.notify_all();
}

void DraftKeeper::deliverReport() {
  std::unique_lock lock(m_mutex);
  const std::string report = m_report;
  lock.unlock();
  if (!report.empty())
    writeAfter(retryDelay, m_isRetryScheduled);
  Q_EMIT reported(report);
}

void DraftKeeper::flush() {
  awaitWriter(); // What it fails to write is tried once more.
  write();
  awaitWriter();
}

bool DraftKeeper::isSafe() {
  const std::lock_guard lock(m_mutex);
  const auto holdsText = [](const std::optional<std::string>& text) { return text && !text->empty(); };
  return !m_isWriting && !holdsText(m_next) && !holdsText(m_pending);
}

void DraftKeeper::awaitWriter() {
  std::unique_lock lock(m_mutex);
  m_isDone.wait(lock, [this] { return !m_isWriting; });
}

} // namespace notlet
