#include "shortcuts/MacShortcutConfig.h"

#include <array>
#include <limits>
#include <nlohmann/json.hpp>

#include "platform/JsonText.h"
#include "shortcuts/MacKeyCombination.h"

namespace notlet {

namespace {

using Json = nlohmann::json;
using Commands = MacShortcutConfig::Commands;
using ArchiveNavigation = MacShortcutConfig::ArchiveNavigation;

/// One key of a group, and what a file of an older version means that lacks it.
template<typename Group>
struct TextField {
  const char* key;
  std::string Group::* member;
  const char* fallback = nullptr;
};

constexpr auto commandFields = std::to_array<TextField<Commands>>({
    {"notlet", &Commands::notlet},
    {"archive", &Commands::archive},
    {"search", &Commands::search},
    {"edit", &Commands::edit, "e"},
    {"delete", &Commands::remove, "d"},
});

constexpr auto navigationFields = std::to_array<TextField<ArchiveNavigation>>({
    {"next", &ArchiveNavigation::next},
    {"nextAlternate", &ArchiveNavigation::nextAlternate},
    {"previous", &ArchiveNavigation::previous},
    {"previousAlternate", &ArchiveNavigation::previousAlternate},
});

constexpr const char* leaderKey = "leader";
constexpr const char* commandsKey = "commands";
constexpr const char* navigationKey = "archiveNavigation";
constexpr const char* timeoutKey = "leaderTimeoutMilliseconds";
constexpr const char* versionKey = "configurationVersion";

std::string quoted(std::string_view path) {
  return "“" + std::string(path) + "”";
}

std::unexpected<Error> missing(std::string_view path) {
  return failure(quoted(path) + " is missing.");
}

/// The member, or null when it is absent: for optional ones both mean the same.
const Json* memberOf(const Json& object, const char* key) {
  const auto found = object.find(key);
  return found == object.end() ? nullptr : &*found;
}

const Json* givenMemberOf(const Json& object, const char* key) {
  const Json* member = memberOf(object, key);
  return member != nullptr && member->is_null() ? nullptr : member;
}

Result<std::string> decodeText(const Json& value, std::string_view path) {
  if (!value.is_string())
    return failure(quoted(path) + " must be a text.");
  return value.get<std::string>();
}

Result<std::int64_t> decodeInteger(const Json& value, std::string_view path) {
  constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (!value.is_number_integer() || (value.is_number_unsigned() && value.get<std::uint64_t>() > largest))
    return failure(quoted(path) + " must be a whole number that is not too large.");
  return value.get<std::int64_t>();
}

template<typename Group>
Result<void> decodeField(const Json& object, const TextField<Group>& field, std::string_view path,
                         Group& group) {
  const bool isRequired = field.fallback == nullptr;
  const Json* value = isRequired ? memberOf(object, field.key) : givenMemberOf(object, field.key);
  if (value == nullptr && isRequired)
    return missing(path);
  if (value == nullptr) {
    group.*field.member = field.fallback;
    return {};
  }
  Result<std::string> text = decodeText(*value, path);
  if (!text)
    return std::unexpected(text.error());
  group.*field.member = std::move(*text);
  return {};
}

template<typename Group, std::size_t Count>
Result<Group> decodeGroup(const Json& object, const char* key,
                          const std::array<TextField<Group>, Count>& fields) {
  const Json* member = memberOf(object, key);
  if (member == nullptr)
    return missing(key);
  if (!member->is_object())
    return failure(quoted(key) + " must be a group in braces, “{ }”.");
  Group group;
  for (const TextField<Group>& field : fields) {
    const std::string path = std::string(key) + "." + field.key;
    if (Result<void> decoded = decodeField(*member, field, path, group); !decoded)
      return std::unexpected(decoded.error());
  }
  return group;
}

template<typename Group, std::size_t Count>
Json encodeGroup(const Group& group, const std::array<TextField<Group>, Count>& fields) {
  Json object = Json::object();
  for (const TextField<Group>& field : fields)
    object[field.key] = group.*field.member;
  return object;
}

/// Takes the value out of a result, or hands its error to the first failure.
template<typename T>
void take(Result<T> result, T& target, std::optional<Error>& firstFailure) {
  if (result)
    target = std::move(*result);
  else if (!firstFailure)
    firstFailure = result.error();
}

bool isComplete(const Json& file) {
  if (!file.is_object())
    return false;
  const Json* commands = memberOf(file, commandsKey);
  return commands != nullptr && commands->is_object() && commands->contains("edit") &&
         commands->contains("delete");
}

} // namespace

const MacShortcutConfig& MacShortcutConfig::defaults() {
  static const MacShortcutConfig defaults;
  return defaults;
}

Result<MacShortcutConfig> MacShortcutConfig::decode(std::string_view json) {
  const Result<Json> file = parseJsonText(json, MacShortcutConfig::largestFile);
  if (!file)
    return std::unexpected(file.error());
  if (!file->is_object())
    return failure("The file must hold one group in braces, “{ }”.");

  MacShortcutConfig config;
  std::optional<Error> failed;
  const Json* leader = memberOf(*file, leaderKey);
  const Json* timeout = memberOf(*file, timeoutKey);
  const Json* version = givenMemberOf(*file, versionKey);
  take(leader != nullptr ? decodeText(*leader, leaderKey) : missing(leaderKey), config.leader, failed);
  take(decodeGroup(*file, commandsKey, commandFields), config.commands, failed);
  take(decodeGroup(*file, navigationKey, navigationFields), config.archiveNavigation, failed);
  take(timeout != nullptr ? decodeInteger(*timeout, timeoutKey) : missing(timeoutKey),
       config.leaderTimeoutMilliseconds, failed);
  take(version != nullptr ? decodeInteger(*version, versionKey) : Result<std::int64_t>(1),
       config.configurationVersion, failed);
  if (failed)
    return std::unexpected(*failed);
  return config;
}

std::string MacShortcutConfig::encode() const {
  const Json file{
      {leaderKey, leader},
      {commandsKey, encodeGroup(commands, commandFields)},
      {navigationKey, encodeGroup(archiveNavigation, navigationFields)},
      {timeoutKey, leaderTimeoutMilliseconds},
      {versionKey, configurationVersion},
  };
  return file.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

std::optional<std::string> MacShortcutConfig::validationMessage() const {
  if (!MacKeyCombination::parse(leader))
    return "The leader must include a key, for example control+s.";
  if (leaderTimeoutMilliseconds < shortestTimeoutMilliseconds)
    return "The leader timeout must be at least 100 milliseconds.";
  return std::nullopt;
}

Result<MacShortcutConfigUpgrade> upgraded(MacShortcutConfig config, std::string_view json) {
  const Result<Json> file = parseJsonText(json, MacShortcutConfig::largestFile);
  if (!file)
    return std::unexpected(file.error());
  MacShortcutConfigUpgrade upgrade{std::move(config), !isComplete(*file)};
  // The meaning of these two keys changed, so what an older file says of them is replaced.
  if (upgrade.config.configurationVersion < 2) {
    upgrade.config.commands.remove = "d";
    upgrade.config.configurationVersion = 2;
    upgrade.mustBeRewritten = true;
  }
  if (upgrade.config.configurationVersion < 3) {
    upgrade.config.commands.search = "/";
    upgrade.config.configurationVersion = 3;
    upgrade.mustBeRewritten = true;
  }
  return upgrade;
}

} // namespace notlet
