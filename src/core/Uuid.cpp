#include "core/Uuid.h"

#include <sys/random.h>

#include <cerrno>
#include <cstdlib>

namespace notlet {

namespace {

constexpr std::string_view upperDigits = "0123456789ABCDEF";

std::optional<std::uint8_t> digitValue(char digit) {
  if (digit >= '0' && digit <= '9')
    return static_cast<std::uint8_t>(digit - '0');
  if (digit >= 'A' && digit <= 'F')
    return static_cast<std::uint8_t>(digit - 'A' + 10);
  if (digit >= 'a' && digit <= 'f')
    return static_cast<std::uint8_t>(digit - 'a' + 10);
  return std::nullopt;
}

bool hyphenFollows(std::size_t byteIndex) {
  return byteIndex == 3 || byteIndex == 5 || byteIndex == 7 || byteIndex == 9;
}

} // namespace

Uuid Uuid::random() {
  Uuid id;
  std::size_t filled = 0;
  while (filled < id.bytes.size()) {
    const ssize_t count = getrandom(id.bytes.data() + filled, id.bytes.size() - filled, 0);
    if (count > 0)
      filled += static_cast<std::size_t>(count);
    else if (errno != EINTR)
      std::abort(); // The kernel has no randomness: no identifier would be unique.
  }
  id.bytes[6] = static_cast<std::uint8_t>((id.bytes[6] & 0x0f) | 0x40);
  id.bytes[8] = static_cast<std::uint8_t>((id.bytes[8] & 0x3f) | 0x80);
  return id;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
  if (text.size() != 36)
    return std::nullopt;
  Uuid id;
  std::size_t position = 0;
  for (std::size_t index = 0; index < id.bytes.size(); ++index) {
    const auto high = digitValue(text[position]);
    const auto low = digitValue(text[position + 1]);
    if (!high || !low)
      return std::nullopt;
    id.bytes[index] = static_cast<std::uint8_t>((*high << 4) | *low);
    position += 2;
    if (hyphenFollows(index) && text[position++] != '-')
      return std::nullopt;
  }
  return id;
}

std::string Uuid::text() const {
  std::string result;
  result.reserve(36);
  for (std::size_t index = 0; index < bytes.size(); ++index) {
    result.push_back(upperDigits[bytes[index] >> 4]);
    result.push_back(upperDigits[bytes[index] & 0x0f]);
    if (hyphenFollows(index))
      result.push_back('-');
  }
  return result;
}

} // namespace notlet
