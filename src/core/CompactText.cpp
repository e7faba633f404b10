#include "core/CompactText.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace notlet {

namespace {

/// Half of a std::size_t, and still more than the store takes in one text.
using Length = std::uint32_t;

} // namespace

CompactText::CompactText(std::string_view text) {
  if (text.empty())
    return;
  if (text.size() > std::numeric_limits<Length>::max())
    throw std::length_error("a text is longer than four gigabytes");
  const auto length = static_cast<Length>(text.size());
  m_block = std::make_unique_for_overwrite<char[]>(sizeof length + length);
  std::memcpy(m_block.get(), &length, sizeof length);
  std::memcpy(m_block.get() + sizeof length, text.data(), length);
}

std::string_view CompactText::view() const {
  if (m_block == nullptr)
    return {};
  Length length = 0;
  std::memcpy(&length, m_block.get(), sizeof length);
  return {m_block.get() + sizeof length, length};
}

} // namespace notlet
