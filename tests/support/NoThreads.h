#pragma once

#include <pthread.h>

namespace notlet {

/// While it lives, the system refuses every new thread.
class NoThreads {
 public:
  NoThreads() {
    pthread_attr_t impossible;
    pthread_getattr_default_np(&m_former);
    pthread_attr_init(&impossible);
    pthread_attr_setstacksize(&impossible, std::size_t{1} << 62);
    pthread_setattr_default_np(&impossible);
    pthread_attr_destroy(&impossible);
  }
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;
  ~NoThreads() {
    pthread_setattr_default_np(&m_former);
    pthread_attr_destroy(&m_former);
  }

 private:
  pthread_attr_t m_former{};
};

} // namespace notlet
