#include "core/Unfolding.h"

#include <unicode/uniset.h>
#include <unicode/unistr.h>
#include <unicode/usetiter.h>

#include <unordered_map>

#include "core/Text.h"

namespace notlet::Unfolding {

namespace {

using Table = std::unordered_map<std::string, std::vector<std::string>, TextHash, std::equal_to<>>;

/// All characters that folding changes; they are some thousands, folded in a millisecond.
Table makeTable() {
  Table table;
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeSet changing(
      icu::UnicodeString(u"[[:Changes_When_Lowercased:][:Full_Composition_Exclusion:]]"), status);
  icu::UnicodeSetIterator characters(changing);
  while (U_SUCCESS(status) && characters.next() != 0) {
    std::string character;
    icu::UnicodeString(characters.getCodepoint()).toUTF8String(character);
    table[folded(character)].push_back(std::move(character));
  }
  // At the end of a word the capital sigma becomes another letter than alone.
  table["ς"].emplace_back("Σ");
  return table;
}

} // namespace

const std::vector<std::string>& charactersOf(std::string_view foldedText) {
  static const Table table = makeTable();
  static const std::vector<std::string> none;
  const auto found = table.find(foldedText);
  return found == table.end() ? none : found->second;
}

} // namespace notlet::Unfolding
