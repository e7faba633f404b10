#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/Text.h"
#include "shortcuts/MacShortcutConfig.h"

namespace notlet {

/// What is wrong with how these bytes are read as a shortcut file; nothing when all is well. Good files and
/// bad ones alike must keep some promises.
inline std::optional<std::string> complaintAboutShortcutFile(std::string_view bytes) {
  const Result<MacShortcutConfig> config = MacShortcutConfig::decode(bytes);
  const Result<MacShortcutConfigUpgrade> upgrade = upgraded(config.value_or(MacShortcutConfig{}), bytes);
  if (!config) {
    const std::string& message = config.error().message;
    if (message.empty() || message.size() > 1000 || !isValidUtf8(message))
      return "The message is not fit to be shown: " + message;
    return std::nullopt;
  }
  if (!upgrade)
    return "A file that was read cannot be upgraded: " + upgrade.error().message;
  if (upgrade->config.configurationVersion < MacShortcutConfig::currentVersion)
    return "The upgrade stopped at an older version.";
  if (!upgrade->mustBeRewritten && upgrade->config != *config)
    return "The upgrade changed something and leaves the file as it was.";

  const std::string written = upgrade->config.encode();
  const Result<MacShortcutConfig> read = MacShortcutConfig::decode(written);
  if (!read)
    return "What was written cannot be read: " + read.error().message;
  if (*read != upgrade->config)
    return "What was written reads as something else.";
  const Result<MacShortcutConfigUpgrade> again = upgraded(*read, written);
  if (!again || again->mustBeRewritten || again->config != *read)
    return "An upgraded file would be upgraded again.";
  return std::nullopt;
}

} // namespace notlet
