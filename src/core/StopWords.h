#pragma once

#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_set>

#include "core/Text.h"

namespace notlet {

/// Words too common to be keywords or search terms.
class StopWords {
 public:
  /// The words given, in any letter case.
  StopWords(std::initializer_list<std::string_view> words);

  /// The set of this process: the program's stopwords.txt, read on first use, else the default list.
  [[nodiscard]] static const StopWords& set();
  /// The short list built into the program.
  [[nodiscard]] static const StopWords& defaultList();
  /// The lines of a UTF-8 file, taken as they are, lowercased; the default list when it cannot be read as
  /// that.
  [[nodiscard]] static StopWords load(const std::filesystem::path& file);

  /// Whether a folded word (see folded()) is in the set.
  [[nodiscard]] bool contains(std::string_view foldedWord) const { return m_words.contains(foldedWord); }
  [[nodiscard]] std::size_t size() const { return m_words.size(); }

 private:
  StopWords() = default;

  std::unordered_set<std::string, TextHash, std::equal_to<>> m_words;
};

} // namespace notlet
