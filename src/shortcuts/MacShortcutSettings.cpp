#include "shortcuts/MacShortcutSettings.h"

#include <system_error>

#include "platform/DurableFile.h"

namespace notlet {

namespace {

namespace fs = std::filesystem;

constexpr const char* loadFailed = "Notlet could not load the shortcut config: ";
constexpr const char* saveFailed = "Notlet could not save the shortcut config: ";

/// Whoever was allowed to read or write the file still is.
mode_t modeFor(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  constexpr mode_t ownerOnly = 0600;
  return fs::is_regular_file(status) ? static_cast<mode_t>(status.permissions() & fs::perms::all) : ownerOnly;
}

std::unexpected<Error> homeIsMissing() {
  return failure("There is no home folder.");
}

} // namespace

MacShortcutSettings::MacShortcutSettings(std::optional<fs::path> directory, FileOpener& opener,
                                         QObject* parent)
    : QObject(parent), m_directory(std::move(directory)), m_opener(opener) {
  reload();
}

std::optional<fs::path> MacShortcutSettings::location() const {
  return m_directory ? std::optional(file()) : std::nullopt;
}

void MacShortcutSettings::setErrorMessage(std::optional<std::string> message) {
  if (m_errorMessage == message)
    return;
  m_errorMessage = std::move(message);
  Q_EMIT changed();
}

void MacShortcutSettings::reload() {
  if (const Result<void> loaded = load(); !loaded)
    setErrorMessage(loadFailed + loaded.error().message);
  else
    setErrorMessage(std::nullopt);
}

void MacShortcutSettings::save(const MacShortcutConfig& config) {
  if (std::optional<std::string> message = config.validationMessage())
    return setErrorMessage(std::move(message));
  // The argument may be the configuration in force itself, or one that goes away while others are told.
  const MacShortcutConfig saved = config;
  if (const Result<void> stored = store(saved); !stored)
    return setErrorMessage(saveFailed + stored.error().message);
  setConfig(saved);
  setErrorMessage(std::nullopt);
}

Result<void> MacShortcutSettings::write(const MacShortcutConfig& config) const {
  if (!m_directory)
    return homeIsMissing();
  return writeDurably(file(), config.encode(), modeFor(file()));
}

void MacShortcutSettings::openConfigFile() {
  std::error_code ignored; // A file that cannot be looked at is left to the application that opens it.
  if (!m_directory || !fs::exists(file(), ignored))
    save(m_config);
  if (!m_directory)
    return;
  const bool hasMessage = m_errorMessage.has_value();
  if (const Result<void> opened = m_opener.open(file()); !opened && !hasMessage)
    setErrorMessage(opened.error().message);
}

Result<void> MacShortcutSettings::load() {
  if (Result<void> made = makeFolder(); !made)
    return made;
  const Result<std::optional<std::string>> contents = readWholeFile(file(), MacShortcutConfig::largestFile);
  if (!contents)
    return std::unexpected(contents.error());
  if (!*contents)
    return write(m_config);
  const Result<MacShortcutConfig> decoded = MacShortcutConfig::decode(**contents);
  if (!decoded)
    return std::unexpected(decoded.error());
  setConfig(*decoded);
  const Result<MacShortcutConfigUpgrade> upgrade = upgraded(*decoded, **contents);
  if (!upgrade)
    return std::unexpected(upgrade.error());
  setConfig(upgrade->config);
  return upgrade->mustBeRewritten ? write(upgrade->config) : Result<void>();
}

Result<void> MacShortcutSettings::store(const MacShortcutConfig& config) const {
  if (Result<void> made = makeFolder(); !made)
    return made;
  return write(config);
}

// Unlike the folders that only this program uses, one that is already there keeps its permissions.
Result<void> MacShortcutSettings::makeFolder() const {
  return m_directory ? makeDirectory(*m_directory) : homeIsMissing();
}

fs::path MacShortcutSettings::file() const {
  return *m_directory / "config.json";
}

void MacShortcutSettings::setConfig(const MacShortcutConfig& config) {
  if (m_config == config)
    return;
  m_config = config;
  Q_EMIT changed();
}

} // namespace notlet
