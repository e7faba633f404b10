#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/ByteSearch.h"

namespace notlet {

/// Sorts out the texts that cannot contain a needle without folding them, which is what a search through many
/// texts takes its time for.
class TextSieve {
 public:
  /// What a look at the bytes tells; in this order the surer hit is the greater.
  enum class Verdict { No, Maybe, Yes };

  /// The needle must be folded and not empty.
  explicit TextSieve(std::string_view foldedNeedle);

  /// Whether containsCanonically(folded(text), needle).
  [[nodiscard]] Verdict inText(std::string_view text) const;
  /// False when neither the text nor any keyword or hashtag taken from it can hold the needle, which must be
  /// a word of letters and digits. It takes least time of all.
  [[nodiscard]] bool mayBeSpelledIn(std::string_view text) const {
    return m_rarestPair ? holdsPairOrJoint(text, *m_rarestPair) : holdsFirstLettersOrJoint(text);
  }
  /// Whether one of the words folds to the needle; each but the last is followed by a newline.
  [[nodiscard]] Verdict amongWords(std::string_view packedWords) const;

 private:
  [[nodiscard]] bool holdsFirstLettersOrJoint(std::string_view text) const;
  [[nodiscard]] bool holdsStranger(std::string_view text) const;
  [[nodiscard]] bool standsForSure(std::string_view text, std::size_t place) const;

  // A piece of the needle whose characters come from nothing but one character each: in the small form, in
  // the capital form, or in one that is rare and then stands among the strangers.
  std::string m_small;
  std::string m_capital;
  /// What a text holds in which the piece was written otherwise.
  std::vector<std::string> m_strangers;
  /// Neighbours in the piece that come from nothing else. In a text they are neighbours, too, or parted by
  /// what a keyword leaves out.
  std::optional<LetterPair> m_rarestPair;
  /// Whether the piece is the whole needle, and its characters fold alike wherever they stand.
  bool m_isSure = false;
};

} // namespace notlet
