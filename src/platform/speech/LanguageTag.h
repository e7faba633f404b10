#pragma once

#include <string>
#include <string_view>

namespace notlet {

/// A language and perhaps a region, as in "en-US", "de_AT" or "fr"; both empty for what is no such thing.
class LanguageTag {
 public:
  explicit LanguageTag(std::string_view text);
  /// Of the folder of a Vosk model: "vosk-model-small-en-us-0.15", or simply "en-us".
  [[nodiscard]] static LanguageTag ofModel(std::string_view folder);

  [[nodiscard]] bool hasSameLanguage(const LanguageTag& other) const {
    return !m_language.empty() && m_language == other.m_language;
  }
  /// Whether what is meant for this is right for the other: "en" covers "en-GB", "en-US" does not.
  [[nodiscard]] bool covers(const LanguageTag& other) const {
    return hasSameLanguage(other) && (m_region.empty() || m_region == other.m_region);
  }
  bool operator==(const LanguageTag&) const = default;

 private:
  std::string m_language;
  std::string m_region;
};

} // namespace notlet
