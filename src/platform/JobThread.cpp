#include "platform/JobThread.h"

#include <system_error>
#include <utility>

namespace notlet {

JobThread::~JobThread() {
  std::deque<std::function<void()>> dropped;
  {
    const std::lock_guard lock(m_mutex);
    dropped.swap(m_jobs);
  }
  if (m_thread.joinable())
    m_thread.join();
}

Result<void> JobThread::run(std::function<void()> job) {
  {
    const std::lock_guard lock(m_mutex);
    m_jobs.push_back(std::move(job));
    if (std::exchange(m_isWorking, true))
      return {};
  }
  // The earlier thread, if any, has nothing left to do but end: waiting for it takes no time.
  try {
    m_thread = std::jthread([this] { work(); });
  } catch (const std::system_error&) {
    const std::lock_guard lock(m_mutex);
    m_jobs.clear();
    m_isWorking = false;
    return failure("The computer runs as many tasks as it can. Close some programs and try again.");
  }
  return {};
}

void JobThread::work() {
  std::unique_lock lock(m_mutex);
  while (!m_jobs.empty()) {
    auto job = std::move(m_jobs.front());
    m_jobs.pop_front();
    lock.unlock();
    job();
    job = nullptr; // What it holds goes before the lock is taken.
    lock.lock();
  }
  m_isWorking = false;
}

} // namespace notlet
