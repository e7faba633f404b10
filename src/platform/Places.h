#pragma once

#include <filesystem>
#include <optional>

namespace notlet {

/// The directories in which the program keeps its files. A place that the desktop does not offer is absent.
struct Places {
  /// Holds `Notlet.store`; `$XDG_DATA_HOME/notlet`.
  std::optional<std::filesystem::path> data;
  /// Holds defaults and drafts; `$XDG_STATE_HOME/notlet`.
  std::optional<std::filesystem::path> state;
  /// Holds the shortcut file; always `~/.config/notlet`.
  std::optional<std::filesystem::path> configuration;
  /// Holds the settings of dictation; `$XDG_CONFIG_HOME/notlet`.
  std::optional<std::filesystem::path> settings;
  /// Belongs to the session; `$XDG_RUNTIME_DIR` where that is a folder of the user's own.
  std::optional<std::filesystem::path> runtime;

  /// Reads HOME and the XDG variables; relative paths in them do not count, as the XDG rules ask.
  [[nodiscard]] static Places fromEnvironment();
};

} // namespace notlet
