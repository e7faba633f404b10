#include "platform/Places.h"

#include <cstdlib>

namespace notlet {

namespace {

std::optional<std::filesystem::path> absolutePath(const char* value) {
  if (value == nullptr || *value != '/')
    return std::nullopt;
  return std::filesystem::path(value);
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
  if (!places.runtime)
    places.runtime = places.state;
  return places;
}

} // namespace notlet
