#include "cli/Output.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "cli/TerminalText.h"

namespace notlet {

Output::Output(int descriptor, std::string name)
    : m_descriptor(descriptor), m_isTerminal(::isatty(descriptor) == 1), m_name(std::move(name)) {
}

void Output::write(std::string_view text) {
  constexpr std::size_t portion = 64 << 10;
  if (!isOpen())
    return;
  if (m_isTerminal)
    m_pending.append(harmless(text));
  else
    m_pending.append(text);
  if (m_pending.size() >= portion)
    writeOut();
}

void Output::writeLine(std::string_view text) {
  write(text);
  write("\n");
}

void Output::writeOut() {
  std::string_view rest = m_pending;
  while (!rest.empty() && isOpen()) {
    const ssize_t written = ::write(m_descriptor, rest.data(), rest.size());
    if (written >= 0)
      rest.remove_prefix(static_cast<std::size_t>(written));
    else if (errno != EINTR)
      m_errorNumber = errno;
  }
  m_pending.clear();
}

CommandResult<void> Output::flush() {
  writeOut();
  if (isOpen() || m_errorNumber == EPIPE)
    return {};
  return commandFailure(m_name + " could not be written: " + std::generic_category().message(m_errorNumber) +
                        ".");
}

std::size_t Output::terminalWidth() const {
  constexpr std::size_t usualWidth = 80;
  winsize size{};
  if (::ioctl(m_descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
    return usualWidth;
  return size.ws_col;
}

} // namespace notlet
