#include "platform/speech/LanguageTag.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <ranges>
#include <utility>
#include <vector>

namespace notlet {

namespace {

/// Names of models that are countries where languages are meant.
constexpr std::array<std::pair<std::string_view, std::string_view>, 4> countries{
    {{"cn", "zh"}, {"kz", "kk"}, {"ua", "uk"}, {"vn", "vi"}}};

std::vector<std::string> wordsOf(std::string_view text) {
  std::vector<std::string> words(1);
  for (const char character : text) {
    if (character == '-' || character == '_')
      words.emplace_back();
    else
      words.back() += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return words;
}

bool isLetters(const std::string& word, std::size_t least, std::size_t most) {
  return word.size() >= least && word.size() <= most &&
         std::ranges::all_of(word, [](char character) { return character >= 'a' && character <= 'z'; });
}

} // namespace

LanguageTag::LanguageTag(std::string_view text) {
  const auto words = wordsOf(text);
  if (!isLetters(words.front(), 2, 3))
    return;
  m_language = words.front();
  // The region may come after the script, as in "zh-Hant-TW".
  for (const std::string& word : words | std::views::drop(1))
    if (isLetters(word, 2, 2)) {
      m_region = word;
      return;
    }
}

LanguageTag LanguageTag::ofModel(std::string_view folder) {
  for (const std::string_view prefix : {"vosk-model-", "small-", "spk-"})
    if (folder.starts_with(prefix))
      folder.remove_prefix(prefix.size());
  LanguageTag tag(folder);
  for (const auto& [country, language] : countries)
    if (tag.m_language == country)
      tag.m_language = language;
  return tag;
}

} // namespace notlet
