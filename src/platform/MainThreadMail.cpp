#include "platform/MainThreadMail.h"

namespace notlet {

void MainThreadMail::post(std::weak_ptr<Sender> sender) {
  {
    const std::lock_guard lock(m_mutex);
    m_senders.push_back(std::move(sender));
  }
  // Only wakes the main thread: what it is told passes under mutexes of our own, where tools that look for
  // races can see it.
  QMetaObject::invokeMethod(this, "deliver", Qt::QueuedConnection);
}

void MainThreadMail::deliver() {
  std::vector<std::weak_ptr<Sender>> senders;
  {
    const std::lock_guard lock(m_mutex);
    senders.swap(m_senders);
  }
  for (const auto& waiting : senders)
    if (const auto sender = waiting.lock())
      sender->deliver();
}

} // namespace notlet
