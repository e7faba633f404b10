#include "cli/Input.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace notlet {
namespace {

/// More than any archive has, and less than the store takes for one note.
constexpr std::size_t mostBytes = 800'000'000;

CommandResult<std::string> readToEnd(int descriptor, const std::string& name) {
  constexpr std::size_t portion = 256 << 10;
  std::string contents;
  std::size_t filled = 0;
  while (filled <= mostBytes) {
    if (contents.size() - filled < portion)
      contents.resize(std::max(contents.size() * 2, filled + portion));
    const ssize_t count = ::read(descriptor, contents.data() + filled, contents.size() - filled);
    if (count < 0 && errno == EINTR)
      continue;
    if (count < 0)
      return commandFailure(name + " could not be read: " + std::generic_category().message(errno) + ".");
    if (count == 0) {
      contents.resize(filled);
      return contents;
    }
    filled += static_cast<std::size_t>(count);
  }
  return commandFailure(name + " is too large: at most " + std::to_string(mostBytes / 1'000'000) +
                        " megabytes can be read.");
}

} // namespace

CommandResult<std::string> readStandardInput() {
  return readToEnd(STDIN_FILENO, "Standard input");
}

CommandResult<std::string> readInput(const std::filesystem::path& file) {
  if (file == "-")
    return readStandardInput();
  const std::string name = inQuotes(file.string());
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0)
    return commandFailure(name + " could not be opened: " + std::generic_category().message(errno) + ".");
  CommandResult<std::string> contents = readToEnd(descriptor, name);
  ::close(descriptor);
  return contents;
}

} // namespace notlet
