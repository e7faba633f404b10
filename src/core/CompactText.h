#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace notlet {

/// A text of any bytes that is kept rather than worked on: a pointer to one block of memory that holds the
/// length and the bytes, no pointer for the empty text.
///
/// A string takes four times the room beside the bytes, also when it is empty, and a list of a million
/// notlets holds three million texts. What is built piece by piece is built in a string.
class CompactText {
 public:
  CompactText() = default;
  CompactText(std::string_view text);
  CompactText(const char* text) : CompactText(std::string_view(text)) {}
  CompactText(const std::string& text) : CompactText(std::string_view(text)) {}

  CompactText(const CompactText& other) : CompactText(other.view()) {}
  CompactText(CompactText&&) noexcept = default;
  CompactText& operator=(const CompactText& other) { return *this = CompactText(other); }
  CompactText& operator=(CompactText&&) noexcept = default;
  ~CompactText() = default;

  operator std::string_view() const { return view(); }
  [[nodiscard]] std::string_view view() const;
  [[nodiscard]] std::string str() const { return std::string(view()); }
  [[nodiscard]] std::size_t size() const { return view().size(); }
  [[nodiscard]] bool empty() const { return m_block == nullptr; }

  template<std::convertible_to<std::string_view> Other>
  friend bool operator==(const CompactText& left, const Other& right) {
    return left.view() == std::string_view(right);
  }

 private:
  std::unique_ptr<char[]> m_block;
};

} // namespace notlet
