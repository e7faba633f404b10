#include "platform/Defaults.h"

#include <QByteArray>
#include <nlohmann/json.hpp>
#include <system_error>

#include "platform/DurableFile.h"

namespace notlet {

namespace {

using Json = nlohmann::json;

constexpr const char* base64Key = "base64";
constexpr std::size_t largestFile = 64U << 20U;

std::string base64(std::string_view bytes) {
  return QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())).toBase64().toStdString();
}

std::filesystem::path freeNameBeside(const std::filesystem::path& file) {
  std::filesystem::path candidate;
  std::error_code ignored;
  int number = 0;
  do {
    candidate = file;
    candidate += ".unreadable-" + std::to_string(++number);
  } while (std::filesystem::exists(std::filesystem::symlink_status(candidate, ignored)));
  return candidate;
}

} // namespace

struct JsonFileDefaults::Entries {
  Json object = Json::object();

  [[nodiscard]] const Json* find(std::string_view key) const {
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
  }

  /// An entry that could not be read as the kind of value which replaces it moves to a key of its own.
  void set(std::string_view key, Json value, bool oldIsReadable) {
    if (const Json* old = find(key); old && !oldIsReadable) {
      std::string kept;
      for (int number = 1; kept.empty() || object.contains(kept); ++number)
        kept = std::string(key) + ".unreadable-" + std::to_string(number);
      object[kept] = *old;
    }
    object[std::string(key)] = std::move(value);
  }
};

JsonFileDefaults::JsonFileDefaults(std::filesystem::path file)
    : m_file(std::move(file)), m_entries(std::make_unique<Entries>()) {
  load();
}

JsonFileDefaults::~JsonFileDefaults() = default;

void JsonFileDefaults::load() {
  if (m_file.empty())
    return;
  const auto contents = readWholeFile(m_file, largestFile);
  const std::optional<std::string> text =
      contents ? *contents : std::string(); // An empty text is no JSON either.
  if (!text)
    return;
  Json parsed = Json::parse(*text, nullptr, false);
  m_fileIsUnreadable = !parsed.is_object();
  if (!m_fileIsUnreadable)
    m_entries->object = std::move(parsed);
}

std::optional<std::string> JsonFileDefaults::string(std::string_view key) const {
  const Json* entry = m_entries->find(key);
  if (!entry || !entry->is_string())
    return std::nullopt;
  return entry->get<std::string>();
}

std::optional<std::int64_t> JsonFileDefaults::integer(std::string_view key) const {
  const Json* entry = m_entries->find(key);
  if (!entry || !entry->is_number_integer())
    return std::nullopt;
  return entry->get<std::int64_t>();
}

std::optional<double> JsonFileDefaults::number(std::string_view key) const {
  const Json* entry = m_entries->find(key);
  if (!entry || !entry->is_number())
    return std::nullopt;
  return entry->get<double>();
}

std::optional<std::string> JsonFileDefaults::binary(std::string_view key) const {
  const Json* entry = m_entries->find(key);
  if (!entry || !entry->is_object())
    return std::nullopt;
  const auto encoded = entry->find(base64Key);
  if (encoded == entry->end() || !encoded->is_string())
    return std::nullopt;
  const auto decoded = QByteArray::fromBase64Encoding(QByteArray::fromStdString(encoded->get<std::string>()),
                                                      QByteArray::AbortOnBase64DecodingErrors);
  if (!decoded)
    return std::nullopt;
  return decoded.decoded.toStdString();
}

Result<void> JsonFileDefaults::setString(std::string_view key, std::string_view value) {
  const auto old = string(key);
  if (old != value)
    m_entries->set(key, std::string(value), old.has_value());
  return write(old != value);
}

Result<void> JsonFileDefaults::setInteger(std::string_view key, std::int64_t value) {
  const auto old = integer(key);
  if (old != value)
    m_entries->set(key, value, old.has_value());
  return write(old != value);
}

Result<void> JsonFileDefaults::setNumber(std::string_view key, double value) {
  const auto old = number(key);
  if (old != value)
    m_entries->set(key, value, old.has_value());
  return write(old != value);
}

Result<void> JsonFileDefaults::setBinary(std::string_view key, std::string_view bytes) {
  const auto old = binary(key);
  if (old != bytes)
    m_entries->set(key, Json{{base64Key, base64(bytes)}}, old.has_value());
  return write(old != bytes);
}

Result<void> JsonFileDefaults::remove(std::string_view key) {
  return write(m_entries->object.erase(std::string(key)) > 0);
}

Result<void> JsonFileDefaults::write(bool changed) {
  // What an earlier write could not bring to the disk goes with this one.
  m_needsWriting = m_needsWriting || changed;
  if (!m_needsWriting)
    return {};
  if (m_file.empty())
    return failure("There is no folder in which preferences could be kept.");
  if (auto aside = setUnreadableFileAside(); !aside)
    return aside;
  if (auto made = makePrivateDirectory(m_file.parent_path()); !made)
    return made;
  auto written =
      writeDurably(m_file, m_entries->object.dump(2, ' ', false, Json::error_handler_t::replace) + '\n');
  m_needsWriting = !written;
  return written;
}

Result<void> JsonFileDefaults::setUnreadableFileAside() {
  if (!m_fileIsUnreadable)
    return {};
  std::error_code error;
  std::filesystem::rename(m_file, freeNameBeside(m_file), error);
  if (error && error != std::errc::no_such_file_or_directory)
    return failure("The unreadable file " + m_file.string() + " could not be renamed: " + error.message() +
                   ".");
  m_fileIsUnreadable = false;
  return {};
}

} // namespace notlet
