#pragma once

#include <map>
#include <variant>

#include "platform/Defaults.h"

namespace notlet {

/// Defaults that end with the test, and that fail to write when told to. A copy starts with the same values.
class MemoryDefaults final : public Defaults {
 public:
  std::optional<std::string> string(std::string_view key) const override { return get<std::string>(key); }
  std::optional<std::int64_t> integer(std::string_view key) const override { return get<std::int64_t>(key); }
  std::optional<double> number(std::string_view key) const override {
    if (const auto whole = integer(key))
      return static_cast<double>(*whole);
    return get<double>(key);
  }
  std::optional<std::string> binary(std::string_view key) const override {
    const auto bytes = get<Bytes>(key);
    return bytes ? std::optional(bytes->value) : std::nullopt;
  }

  Result<void> setString(std::string_view key, std::string_view value) override {
    return set(key, std::string(value));
  }
  Result<void> setInteger(std::string_view key, std::int64_t value) override { return set(key, value); }
  Result<void> setNumber(std::string_view key, double value) override { return set(key, value); }
  Result<void> setBinary(std::string_view key, std::string_view bytes) override {
    return set(key, Bytes{std::string(bytes)});
  }
  Result<void> remove(std::string_view key) override {
    m_values.erase(std::string(key));
    return written();
  }

  bool failsToWrite = false;

 private:
  struct Bytes {
    std::string value;
  };
  using Value = std::variant<std::string, std::int64_t, double, Bytes>;

  template<typename Kind>
  [[nodiscard]] std::optional<Kind> get(std::string_view key) const {
    const auto found = m_values.find(std::string(key));
    if (found == m_values.end() || !std::holds_alternative<Kind>(found->second))
      return std::nullopt;
    return std::get<Kind>(found->second);
  }
  Result<void> set(std::string_view key, Value value) {
    m_values.insert_or_assign(std::string(key), std::move(value));
    return written();
  }
  [[nodiscard]] Result<void> written() const {
    if (failsToWrite)
      return failure("The disk is full.");
    return {};
  }

  std::map<std::string, Value> m_values;
};

} // namespace notlet
