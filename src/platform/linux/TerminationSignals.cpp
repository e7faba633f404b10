#include "platform/linux/TerminationSignals.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace notlet {

namespace {

sigset_t handledSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGTERM, SIGINT, SIGHUP})
    sigaddset(&signals, number);
  return signals;
}

} // namespace

void TerminationSignals::block() {
  const sigset_t signals = handledSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent) {
  const sigset_t signals = handledSignals();
  m_descriptor = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
  if (m_descriptor < 0) {
    // Better to end at once, with the drafts of half a second ago, than not at all.
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    return;
  }
  m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
  connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
    signalfd_siginfo information;
    while (::read(m_descriptor, &information, sizeof information) == sizeof information)
      Q_EMIT received();
  });
}

TerminationSignals::~TerminationSignals() {
  if (m_descriptor < 0)
    return;
  m_notifier.reset();
  close(m_descriptor);
}

} // namespace notlet
