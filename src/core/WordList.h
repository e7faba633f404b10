#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "core/CompactText.h"

namespace notlet {

/// An ordered list of words without newlines (hashtags, keywords), packed into one text.
///
/// An archive holds a dozen words for each of a hundred thousand notlets; one allocation for all words of a
/// notlet takes a quarter of what a vector of strings takes. A list does not grow: a Builder makes it.
class WordList {
 public:
  class Iterator {
   public:
    using value_type = std::string_view;
    using difference_type = std::ptrdiff_t;
    using reference = std::string_view;
    using iterator_category = std::forward_iterator_tag;

    Iterator() = default;
    explicit Iterator(std::string_view rest) : m_rest(rest), m_atEnd(rest.empty()) {}

    std::string_view operator*() const { return m_rest.substr(0, m_rest.find('\n')); }
    Iterator& operator++() {
      m_rest.remove_prefix(std::min(m_rest.size(), (**this).size() + 1));
      m_atEnd = m_rest.empty();
      return *this;
    }
    Iterator operator++(int) {
      const Iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const Iterator& other) const {
      return m_atEnd == other.m_atEnd && (m_atEnd || m_rest.data() == other.m_rest.data());
    }

   private:
    std::string_view m_rest;
    bool m_atEnd = true;
  };

  /// The words of a packed form that somebody else owns.
  struct View {
    std::string_view packed;

    [[nodiscard]] Iterator begin() const { return Iterator(packed); }
    [[nodiscard]] static Iterator end() { return {}; }
  };

  using value_type = std::string_view;
  using iterator = Iterator;
  using const_iterator = Iterator;

  class Builder {
   public:
    /// Adds a word at the end; it must not be empty nor hold a newline.
    void append(std::string_view word) { m_packed.append(word).push_back('\n'); }
    [[nodiscard]] WordList list() const { return fromPacked(m_packed); }

   private:
    std::string m_packed;
  };

  WordList() = default;
  WordList(std::initializer_list<std::string_view> words) {
    Builder builder;
    for (const std::string_view word : words)
      builder.append(word);
    *this = builder.list();
  }
  /// Takes the form that packed() gives back; the last word's newline may be missing.
  [[nodiscard]] static WordList fromPacked(std::string_view packed) {
    WordList list;
    if (packed.empty() || packed.back() == '\n')
      list.m_packed = packed;
    else
      list.m_packed = std::string(packed) + '\n';
    return list;
  }

  /// All words, each followed by a newline: the form in which the store keeps the list.
  [[nodiscard]] std::string_view packed() const { return m_packed; }
  [[nodiscard]] View view() const { return {m_packed}; }
  [[nodiscard]] bool empty() const { return m_packed.empty(); }
  [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(std::distance(begin(), end())); }
  [[nodiscard]] Iterator begin() const { return Iterator(m_packed); }
  [[nodiscard]] static Iterator end() { return {}; }
  [[nodiscard]] std::vector<std::string> strings() const { return {begin(), end()}; }

  bool operator==(const WordList&) const = default;

 private:
  CompactText m_packed;
};

} // namespace notlet
