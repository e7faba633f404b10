#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/CommandError.h"

namespace notlet {

enum class Verb {
  Start,
  Capture,
  Open,
  Add,
  List,
  Search,
  Show,
  Edit,
  Delete,
  Tags,
  Export,
  Import,
  Path,
  Help,
  Version
};

enum class ExportFormat { Json, Markdown };

/// What the user asked for, as far as the words alone tell.
struct CommandLine {
  Verb verb = Verb::Start;
  /// What follows the verb, without options.
  std::vector<std::string> words;
  /// As given, perhaps with a leading "#".
  std::vector<std::string> tags;
  std::optional<std::size_t> limit;
  ExportFormat format = ExportFormat::Json;
  bool json = false;

  /// Reads the arguments after the program's name. Options may stand anywhere before "--".
  [[nodiscard]] static CommandResult<CommandLine> parse(std::span<const std::string_view> arguments);

  /// What `notlet help` prints.
  [[nodiscard]] static std::string_view help();

  bool operator==(const CommandLine&) const = default;
};

} // namespace notlet
