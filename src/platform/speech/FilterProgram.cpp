#include "platform/speech/FilterProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <optional>

namespace notlet {

namespace {

constexpr std::chrono::milliseconds politeness{200};

struct Pipe {
  Descriptor reading;
  Descriptor writing;
};

std::optional<Pipe> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0)
    return std::nullopt;
  return Pipe{Descriptor(ends[0]), Descriptor(ends[1])};
}

bool makeNonBlocking(const Descriptor& descriptor) {
  return ::fcntl(descriptor.number(), F_SETFL, O_NONBLOCK) == 0;
}

/// Starts the program in a process group of its own, with all signals as usual; an error number.
int spawn(const std::vector<std::string>& command, const Pipe& input, const Pipe& output, pid_t& process) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& word : command)
    arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  sigset_t none;
  sigset_t all;
  ::sigemptyset(&none);
  ::sigfillset(&all);
  posix_spawnattr_t attributes;
  ::posix_spawnattr_init(&attributes);
  ::posix_spawnattr_setsigmask(&attributes, &none);
  ::posix_spawnattr_setsigdefault(&attributes, &all);
  ::posix_spawnattr_setpgroup(&attributes, 0);
  ::posix_spawnattr_setflags(&attributes, static_cast<short>(POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                                             POSIX_SPAWN_SETSIGDEF));
  posix_spawn_file_actions_t files;
  ::posix_spawn_file_actions_init(&files);
  ::posix_spawn_file_actions_adddup2(&files, input.reading.number(), STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&files, output.writing.number(), STDOUT_FILENO);
  ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  const int error =
      ::posix_spawn(&process, arguments.front(), &files, &attributes, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&files);
  ::posix_spawnattr_destroy(&attributes);
  return error;
}

/// Keeps SIGPIPE from this thread: a program that has ended must not take this one along.
class NoPipeSignal {
 public:
  NoPipeSignal() {
    ::sigemptyset(&m_pipe);
    ::sigaddset(&m_pipe, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before);
  }
  NoPipeSignal(const NoPipeSignal&) = delete;
  NoPipeSignal& operator=(const NoPipeSignal&) = delete;
  ~NoPipeSignal() {
    constexpr timespec atOnce{};
    while (::sigtimedwait(&m_pipe, nullptr, &atOnce) > 0) {
    }
    ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
  }

 private:
  sigset_t m_pipe{};
  sigset_t m_before{};
};

} // namespace

Result<std::unique_ptr<FilterProgram>> FilterProgram::start(std::vector<std::string> command) {
  auto input = makePipe();
  auto output = makePipe();
  if (!input || !output || !makeNonBlocking(input->writing) || !makeNonBlocking(output->reading))
    return failure("The program " + command.front() + " could not be started: " + std::strerror(errno) + ".");
  pid_t process = 0;
  if (const int error = spawn(command, *input, *output, process); error != 0)
    return failure("The program " + command.front() + " could not be started: " + std::strerror(error) + ".");
  return std::unique_ptr<FilterProgram>(
      new FilterProgram(process, std::move(input->writing), std::move(output->reading)));
}

FilterProgram::FilterProgram(pid_t process, Descriptor input, Descriptor output)
    : m_process(process), m_input(std::move(input)), m_output(std::move(output)) {
}

FilterProgram::~FilterProgram() {
  closeInput();
  if (m_hasEnded || waitForEnd(std::chrono::milliseconds(0)))
    return;
  ::kill(-m_process, SIGTERM);
  if (waitForEnd(politeness))
    return;
  ::kill(-m_process, SIGKILL);
  ::waitpid(m_process, &m_status, 0);
}

std::size_t FilterProgram::write(std::span<const char> bytes) {
  if (!m_input.isOpen())
    return 0;
  const NoPipeSignal noSignal;
  const ssize_t count = ::write(m_input.number(), bytes.data(), bytes.size());
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

void FilterProgram::closeInput() {
  m_input = Descriptor();
}

FilterProgram::Reading FilterProgram::read(std::string& output) {
  std::array<char, 4096> piece{};
  const ssize_t count = ::read(m_output.number(), piece.data(), piece.size());
  if (count < 0)
    return errno == EAGAIN || errno == EINTR ? Reading::nothingYet : Reading::ended;
  output.append(piece.data(), static_cast<std::size_t>(count));
  return count > 0 ? Reading::some : Reading::ended;
}

void FilterProgram::wait(bool toWrite, std::chrono::milliseconds longest) const {
  std::array<pollfd, 2> polled{
      {{m_output.number(), POLLIN, 0}, {toWrite ? m_input.number() : -1, POLLOUT, 0}}};
  ::poll(polled.data(), polled.size(), static_cast<int>(longest.count()));
}

/// Whether it has ended within this time.
bool FilterProgram::waitForEnd(std::chrono::milliseconds longest) {
  const Descriptor ending(static_cast<int>(::syscall(SYS_pidfd_open, m_process, 0)));
  if (pollfd polled{ending.number(), POLLIN, 0}; ending.isOpen())
    ::poll(&polled, 1, static_cast<int>(longest.count()));
  m_hasEnded = ::waitpid(m_process, &m_status, WNOHANG) == m_process;
  return m_hasEnded;
}

std::string FilterProgram::fate() {
  if (!m_hasEnded && !waitForEnd(politeness))
    return "it closed its output";
  if (WIFSIGNALED(m_status))
    return "it was ended by signal " + std::to_string(WTERMSIG(m_status));
  return "it ended with status " + std::to_string(WEXITSTATUS(m_status));
}

} // namespace notlet
