#include "support/ChildProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace notlet {

ChildProcess::ChildProcess(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& word : command)
    arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (std::getenv("NOTLET_TEST_OUTPUT") == nullptr) {
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  }
  const int error = posix_spawnp(&m_process, arguments.front(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error == 0)
    return;
  std::fprintf(stderr, "%s could not be started: %s\n", arguments.front(), std::strerror(error));
  std::exit(1);
}

ChildProcess::~ChildProcess() {
  signal(SIGTERM);
  wait();
}

void ChildProcess::signal(int number) const {
  if (m_process > 0)
    kill(m_process, number);
}

std::optional<int> ChildProcess::wait() {
  int status = 0;
  if (m_process <= 0 || waitpid(m_process, &status, 0) != m_process)
    return std::nullopt;
  m_process = 0;
  return WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
}

} // namespace notlet
