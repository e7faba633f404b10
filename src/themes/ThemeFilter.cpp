#include "themes/ThemeFilter.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>

#include "core/Text.h"

namespace notlet {

namespace {

icu::StringPiece piece(std::string_view text) {
  return {text.data(), static_cast<int32_t>(text.size())};
}

bool hasDotlessI(std::string_view localeName) {
  const icu::Locale locale(std::string(localeName).c_str());
  const std::string_view language = locale.getLanguage();
  return language == "tr" || language == "az";
}

} // namespace

ThemeFilter::ThemeFilter(std::string_view searchText, std::string_view localeName)
    : m_hasDotlessI(hasDotlessI(localeName)), m_needle(folded(searchText)) {
}

bool ThemeFilter::admits(const AppTheme& theme) const {
  return m_needle.empty() || containsCanonically(folded(theme.name), m_needle) ||
         containsCanonically(folded(theme.category), m_needle);
}

std::string ThemeFilter::folded(std::string_view text) const {
  const std::uint32_t options = m_hasDotlessI ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT;
  UErrorCode status = U_ZERO_ERROR;
  std::string caseless;
  icu::StringByteSink<std::string> caselessSink(&caseless);
  icu::CaseMap::utf8Fold(options, piece(text), caselessSink, nullptr, status);
  const icu::Normalizer2* form = icu::Normalizer2::getNFCInstance(status);
  if (U_FAILURE(status))
    return std::string(text);
  std::string result;
  icu::StringByteSink<std::string> sink(&result);
  form->normalizeUTF8(0, piece(caseless), sink, nullptr, status);
  return U_SUCCESS(status) ? result : caseless;
}

std::string userLocaleName() {
  return icu::Locale::getDefault().getName();
}

} // namespace notlet
