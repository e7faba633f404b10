#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "support/TemporaryDirectory.h"

namespace notlet {

inline std::string fileContents(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

inline void writeFile(const std::filesystem::path& file, std::string_view contents) {
  std::ofstream(file, std::ios::binary) << contents;
}

struct Finished {
  int status = -1;
  std::string output;
  std::string errors;

  [[nodiscard]] std::vector<std::string> lines() const {
    std::vector<std::string> result;
    std::istringstream stream(output);
    for (std::string line; std::getline(stream, line);)
      result.push_back(line);
    return result;
  }
};

/// Runs the real program in a home directory of its own. Output goes through files, so that nothing can
/// block.
class NotletProcess {
 public:
  using Words = std::vector<std::string>;

  NotletProcess() { std::filesystem::create_directory(home()); }

  [[nodiscard]] std::filesystem::path home() const { return m_directory.path() / "home"; }
  [[nodiscard]] std::filesystem::path store() const { return home() / ".local/share/notlet/Notlet.store"; }

  std::string program = NOTLET_PROGRAM;
  /// An empty value removes the variable.
  std::map<std::string, std::string> environment;
  /// Where standard output goes instead of into the result.
  int outputDescriptor = -1;

  [[nodiscard]] Finished run(const Words& words, std::string_view input = {}) const {
    const std::filesystem::path place = freshPlace();
    writeFile(place / "in", input);
    const int in = ::open((place / "in").c_str(), O_RDONLY | O_CLOEXEC);
    const int out = ::open((place / "out").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const int errors = ::open((place / "err").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const int status = spawnAndWait(words, {in, outputDescriptor < 0 ? out : outputDescriptor, errors});
    for (const int descriptor : {in, out, errors})
      ::close(descriptor);
    Finished finished{status, fileContents(place / "out"), fileContents(place / "err")};
    std::filesystem::remove_all(place);
    return finished;
  }

  /// Runs what must succeed, in silence on standard error.
  [[nodiscard]] Finished succeed(const Words& words, std::string_view input = {}) const {
    Finished finished = run(words, input);
    EXPECT_EQ(finished.status, 0) << ::testing::PrintToString(words) << finished.errors;
    EXPECT_EQ(finished.errors, "");
    return finished;
  }

  /// Stores a text and gives its id.
  [[nodiscard]] std::string add(std::string_view text) const {
    return succeed({"add"}, text).output.substr(0, 36);
  }

 private:
  [[nodiscard]] std::filesystem::path freshPlace() const {
    std::string name = (m_directory.path() / "run-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr)
      throw std::runtime_error("no directory for the output");
    return name;
  }

  [[nodiscard]] std::vector<std::string> fullEnvironment() const {
    std::map<std::string, std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
      const std::string text = *variable;
      if (!text.starts_with("XDG_"))
        variables[text.substr(0, text.find('='))] = text.substr(text.find('=') + 1);
    }
    variables["HOME"] = home().string();
    variables["TZ"] = "UTC";
    for (const auto& [name, value] : environment)
      variables[name] = value;
    std::vector<std::string> result;
    for (const auto& [name, value] : variables) {
      if (!value.empty())
        result.push_back(name + "=" + value);
    }
    return result;
  }

  static std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts)
      result.push_back(text.data());
    result.push_back(nullptr);
    return result;
  }

  [[nodiscard]] int spawnAndWait(const Words& words, const std::array<int, 3>& descriptors) const {
    Words arguments{program};
    arguments.insert(arguments.end(), words.begin(), words.end());
    std::vector<std::string> variables = fullEnvironment();
    posix_spawn_file_actions_t actions{};
    ::posix_spawn_file_actions_init(&actions);
    for (int number = 0; number < 3; ++number)
      ::posix_spawn_file_actions_adddup2(&actions, descriptors[static_cast<std::size_t>(number)], number);
    pid_t process = 0;
    const int failure = ::posix_spawn(&process, program.c_str(), &actions, nullptr,
                                      pointers(arguments).data(), pointers(variables).data());
    ::posix_spawn_file_actions_destroy(&actions);
    EXPECT_EQ(failure, 0) << std::strerror(failure);
    int status = 0;
    if (failure != 0 || ::waitpid(process, &status, 0) != process)
      return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
  }

  TemporaryDirectory m_directory;
};

} // namespace notlet
