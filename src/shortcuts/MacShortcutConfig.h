#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/Error.h"

namespace notlet {

/// The keys that work the main window. Except for the leader each value is the name of a single key; letter
/// case does not count. All texts are UTF-8.
struct MacShortcutConfig {
  struct Commands {
    /// After the leader: write a notlet.
    std::string notlet = "j";
    /// After the leader: show the archive.
    std::string archive = "a";
    /// Alone: search the archive.
    std::string search = "/";
    /// Alone, in the archive: edit the selected notlet.
    std::string edit = "e";
    /// Alone, in the archive: delete the selected notlet. "delete" in the file.
    std::string remove = "d";

    bool operator==(const Commands&) const = default;
  };

  struct ArchiveNavigation {
    std::string next = "down";
    std::string nextAlternate = "j";
    std::string previous = "up";
    std::string previousAlternate = "k";

    bool operator==(const ArchiveNavigation&) const = default;
  };

  static constexpr std::int64_t currentVersion = 3;
  static constexpr std::int64_t shortestTimeoutMilliseconds = 100;
  /// Bytes; a longer file is not read.
  static constexpr std::size_t largestFile = 1U << 20U;

  /// The key combination that arms the keyboard for one command.
  std::string leader = "control+s";
  Commands commands;
  ArchiveNavigation archiveNavigation;
  /// How long after the leader a command is waited for.
  std::int64_t leaderTimeoutMilliseconds = 1200;
  std::int64_t configurationVersion = currentVersion;

  [[nodiscard]] static const MacShortcutConfig& defaults();

  /// Reads the JSON of the shortcut file. Keys that older versions did not know have fallbacks; without a
  /// version it is version 1. Fails, with one sentence that says where, on everything that is not this
  /// format; keys that it does not know are ignored.
  [[nodiscard]] static Result<MacShortcutConfig> decode(std::string_view json);
  /// Indented JSON with sorted keys, all of them.
  [[nodiscard]] std::string encode() const;

  /// What keeps this from being saved, as a whole sentence; nothing when it may be.
  [[nodiscard]] std::optional<std::string> validationMessage() const;

  bool operator==(const MacShortcutConfig&) const = default;
};

/// What became of a configuration that an older version of the program wrote.
struct MacShortcutConfigUpgrade {
  MacShortcutConfig config;
  /// The file lacks something that the current format has.
  bool mustBeRewritten = false;
};

/// Brings a configuration up to the current version. `json` is the text that it was decoded from; fails when
/// that is no JSON.
[[nodiscard]] Result<MacShortcutConfigUpgrade> upgraded(MacShortcutConfig config, std::string_view json);

} // namespace notlet
