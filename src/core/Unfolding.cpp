#include "core/Unfolding.h"

#include <unicode/uchar.h>
#include <unicode/uniset.h>
#include <unicode/unistr.h>
#include <unicode/usetiter.h>

#include <unordered_map>

#include "core/Text.h"

namespace notlet::Unfolding {

namespace {

using Characters = std::unordered_map<std::string, icu::UnicodeSet>;

std::string utf8(UChar32 character) {
  std::string text;
  return icu::UnicodeString(character).toUTF8String(text);
}

/// The characters that no canonical form holds, by what becomes of them.
const icu::UnicodeSet* neverCanonical(std::string_view foldedText) {
  static const Characters table = [] {
    Characters characters;
    UErrorCode status = U_ZERO_ERROR;
    const USet* all = u_getBinaryPropertySet(UCHAR_FULL_COMPOSITION_EXCLUSION, &status);
    if (U_FAILURE(status))
      return characters;
    icu::UnicodeSetIterator each(*icu::UnicodeSet::fromUSet(all));
    while (each.next() != 0)
      characters[folded(utf8(each.getCodepoint()))].add(each.getCodepoint());
    return characters;
  }();
  const auto found = table.find(std::string(foldedText));
  return found == table.end() ? nullptr : &found->second;
}

} // namespace

std::vector<std::string> charactersOf(std::string_view foldedText) {
  icu::UnicodeSet candidates;
  candidates.add(icu::UnicodeString::fromUTF8(
      icu::StringPiece(foldedText.data(), static_cast<int32_t>(foldedText.size()))));
  if (const icu::UnicodeSet* others = neverCanonical(foldedText))
    candidates.addAll(*others);
  candidates.closeOver(USET_CASE_INSENSITIVE);

  std::vector<std::string> found;
  icu::UnicodeSetIterator each(candidates);
  while (each.next() != 0 && !each.isString()) {
    std::string character = utf8(each.getCodepoint());
    if (character != foldedText && folded(character) == foldedText)
      found.push_back(std::move(character));
  }
  // At the end of a word the capital sigma becomes another letter than alone.
  if (foldedText == "ς")
    found.emplace_back("Σ");
  return found;
}

} // namespace notlet::Unfolding
