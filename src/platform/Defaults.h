#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/Error.h"

namespace notlet {

/// Small preferences kept between runs, by key.
///
/// Reading gives nothing for a key that is absent or holds another kind of value. Writing takes effect at
/// once for later reads, and in memory even when it fails to reach the disk; it then goes there with the next
/// write, also with one that changes nothing.
class Defaults {
 public:
  virtual ~Defaults() = default;

  /// UTF-8.
  [[nodiscard]] virtual std::optional<std::string> string(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<std::int64_t> integer(std::string_view key) const = 0;
  /// Also reads an integer.
  [[nodiscard]] virtual std::optional<double> number(std::string_view key) const = 0;
  /// Any bytes.
  [[nodiscard]] virtual std::optional<std::string> binary(std::string_view key) const = 0;

  [[nodiscard]] virtual Result<void> setString(std::string_view key, std::string_view value) = 0;
  [[nodiscard]] virtual Result<void> setInteger(std::string_view key, std::int64_t value) = 0;
  [[nodiscard]] virtual Result<void> setNumber(std::string_view key, double value) = 0;
  [[nodiscard]] virtual Result<void> setBinary(std::string_view key, std::string_view bytes) = 0;
  [[nodiscard]] virtual Result<void> remove(std::string_view key) = 0;
};

/// Defaults in one JSON file, an object of keys, read once and written at each change. Binary values are
/// objects
/// {"base64": "…"}. Entries that nobody asks for are kept.
class JsonFileDefaults final : public Defaults {
 public:
  /// A missing file is an empty one. A file that cannot be read as a JSON object also counts as empty, and is
  /// renamed to "<name>.unreadable-<number>" before the first write; an entry of the wrong kind is likewise
  /// kept under another key when it is replaced. With an empty path nothing is ever written.
  explicit JsonFileDefaults(std::filesystem::path file);
  ~JsonFileDefaults() override;

  [[nodiscard]] std::optional<std::string> string(std::string_view key) const override;
  [[nodiscard]] std::optional<std::int64_t> integer(std::string_view key) const override;
  [[nodiscard]] std::optional<double> number(std::string_view key) const override;
  [[nodiscard]] std::optional<std::string> binary(std::string_view key) const override;
  [[nodiscard]] Result<void> setString(std::string_view key, std::string_view value) override;
  [[nodiscard]] Result<void> setInteger(std::string_view key, std::int64_t value) override;
  [[nodiscard]] Result<void> setNumber(std::string_view key, double value) override;
  [[nodiscard]] Result<void> setBinary(std::string_view key, std::string_view bytes) override;
  [[nodiscard]] Result<void> remove(std::string_view key) override;

 private:
  struct Entries;

  void load();
  [[nodiscard]] Result<void> write(bool changed);
  [[nodiscard]] Result<void> setUnreadableFileAside();

  std::filesystem::path m_file;
  std::unique_ptr<Entries> m_entries;
  bool m_fileIsUnreadable = false;
  /// Something is in memory that the file does not hold.
  bool m_needsWriting = false;
};

} // namespace notlet
