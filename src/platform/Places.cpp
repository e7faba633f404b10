#include "platform/Places.h"

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace notlet {

namespace {

std::optional<std::filesystem::path> absolutePath(const char* value) {
  if (value == nullptr || *value != '/')
    return std::nullopt;
  return std::filesystem::path(value);
}

/// After `su` and the like the variable may still name somebody else's.
bool isOwnDirectory(const std::filesystem::path& path) {
  struct stat status{};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
}

} // namespace

Places Places::fromEnvironment() {
  const auto home = absolutePath(std::getenv("HOME"));
  const auto below = [&](const char* variable, const char* fallback) -> std::optional<std::filesystem::path> {
    if (auto base = absolutePath(std::getenv(variable)))
      return *base / "notlet";
    if (home)
      return *home / fallback / "notlet";
    return std::nullopt;
  };
  Places places;
  places.data = below("XDG_DATA_HOME", ".local/share");
  places.state = below("XDG_STATE_HOME", ".local/state");
  places.settings = below("XDG_CONFIG_HOME", ".config");
  if (home)
    places.configuration = *home / ".config" / "notlet";
  places.runtime = absolutePath(std::getenv("XDG_RUNTIME_DIR"));
  if (places.runtime && !isOwnDirectory(*places.runtime))
    places.runtime.reset();
  return places;
}

} // namespace notlet
