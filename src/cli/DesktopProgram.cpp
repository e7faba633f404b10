#include "cli/DesktopProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace notlet {
namespace {

constexpr const char* programName = "notlet-desktop";

/// In a session of its own, without this terminal, and with the signals as they usually are.
class DetachedSpawn {
 public:
  /// The arguments begin with the program's name.
  explicit DetachedSpawn(std::vector<std::string> arguments) : m_arguments(std::move(arguments)) {
    sigset_t signals;
    ::sigemptyset(&signals);
    ::sigaddset(&signals, SIGPIPE);
    ::sigaddset(&signals, SIGXFSZ);
    ::posix_spawnattr_init(&m_attributes);
    ::posix_spawnattr_setsigdefault(&m_attributes, &signals);
    ::posix_spawnattr_setflags(&m_attributes, static_cast<short>(POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF));
    ::posix_spawn_file_actions_init(&m_files);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
      ::posix_spawn_file_actions_addopen(&m_files, descriptor, "/dev/null", O_RDWR, 0);
  }
  DetachedSpawn(const DetachedSpawn&) = delete;
  DetachedSpawn& operator=(const DetachedSpawn&) = delete;
  ~DetachedSpawn() {
    ::posix_spawn_file_actions_destroy(&m_files);
    ::posix_spawnattr_destroy(&m_attributes);
  }

  /// A name without "/" is looked for in PATH. Gives an error number.
  [[nodiscard]] int start(const char* program, pid_t& process) {
    std::vector<char*> arguments;
    arguments.reserve(m_arguments.size() + 1);
    for (std::string& argument : m_arguments)
      arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    return ::posix_spawnp(&process, program, &m_files, &m_attributes, arguments.data(), environ);
  }

 private:
  std::vector<std::string> m_arguments;
  posix_spawnattr_t m_attributes{};
  posix_spawn_file_actions_t m_files{};
};

/// Looks whether the program comes up: one without a display to show itself on ends at once.
CommandResult<void> watchStart(pid_t process) {
  constexpr std::chrono::milliseconds watched{500};
  const int descriptor = static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
  if (descriptor < 0)
    return {}; // An old kernel cannot tell; the program was started.
  pollfd poll{.fd = descriptor, .events = POLLIN, .revents = 0};
  const bool ended = ::poll(&poll, 1, static_cast<int>(watched.count())) > 0;
  ::close(descriptor);
  int status = 0;
  if (!ended || ::waitpid(process, &status, WNOHANG) != process)
    return {};
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
    return {};
  return commandFailure("The window could not be opened. Start " + inQuotes(programName) +
                        " in this terminal to see why.");
}

std::vector<std::string> argumentsFor(const LaunchRequest& request) {
  std::vector<std::string> arguments{programName};
  if (request.kind == LaunchRequest::Kind::capture)
    arguments.emplace_back("--capture");
  arguments.insert(arguments.end(), request.urls.begin(), request.urls.end());
  return arguments;
}

} // namespace

CommandResult<void> startDesktopProgram(const LaunchRequest& request) {
  std::error_code ignored; // Without a known place of our own only PATH is left.
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", ignored);
  DetachedSpawn spawn(argumentsFor(request));
  pid_t process = 0;
  int reason = ENOENT;
  if (!self.empty())
    reason = spawn.start((self.parent_path() / programName).c_str(), process);
  if (reason == ENOENT)
    reason = spawn.start(programName, process);
  if (reason != 0)
    return commandFailure(inQuotes(programName) +
                          " could not be started: " + std::generic_category().message(reason) + ".");
  return watchStart(process);
}

} // namespace notlet
