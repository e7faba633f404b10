#pragma once

#include <QPointer>
#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

#include "platform/Scheduler.h"

namespace notlet {

/// A scheduler whose time passes when the test says so.
class FakeScheduler final : public Scheduler {
 public:
  void after(std::chrono::milliseconds delay, QObject* context, std::function<void()> work) override {
    m_waiting.push_back({m_now + delay, context, std::move(work)});
  }

  /// Whether nothing is to be done later.
  [[nodiscard]] bool isIdle() const { return m_waiting.empty(); }

  /// Lets the time pass and runs, in order, what falls due.
  void advance(std::chrono::milliseconds time) {
    const auto end = m_now + time;
    for (;;) {
      const auto next = std::ranges::min_element(m_waiting, {}, &Entry::due);
      if (next == m_waiting.end() || next->due > end)
        break;
      m_now = next->due;
      const Entry entry = std::move(*next);
      m_waiting.erase(next);
      if (entry.context)
        entry.work();
    }
    m_now = end;
  }

 private:
  struct Entry {
    std::chrono::milliseconds due;
    QPointer<QObject> context;
    std::function<void()> work;
  };

  std::chrono::milliseconds m_now{0};
  std::vector<Entry> m_waiting;
};

} // namespace notlet
