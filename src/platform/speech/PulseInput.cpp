#include "platform/speech/PulseInput.h"

#include <sys/eventfd.h>

#include "platform/speech/PulseSession.h"

namespace notlet {

PulseInput::PulseInput(const Patience& patience)
    : m_patience(patience), m_stopping(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
}

std::expected<void, AudioError> PulseInput::listen(const Listener& listener) {
  return PulseSession(m_patience, m_stopping.number()).listen(listener);
}

std::expected<void, AudioError> PulseInput::probe() {
  return PulseSession(m_patience, m_stopping.number()).probe();
}

void PulseInput::stop() {
  ::eventfd_write(m_stopping.number(), 1);
}

} // namespace notlet
