#include "core/KeywordExtractor.h"

#include <unicode/brkiter.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>
#include <unordered_set>

#include "core/Text.h"

namespace notlet::KeywordExtractor {

namespace {

constexpr std::size_t shortestKeyword = 3;

/// Making it loads dictionaries.
icu::BreakIterator* wordIterator() {
  UErrorCode status = U_ZERO_ERROR;
  thread_local const std::unique_ptr<icu::BreakIterator> words(
      icu::BreakIterator::createWordInstance(icu::Locale::getRoot(), status));
  return words.get();
}

bool holdsOnlyLettersAndDigits(std::string_view word) {
  while (!word.empty()) {
    const CodePoint next = firstCodePoint(word);
    if (!isLetterOrDigit(next.value))
      return false;
    word.remove_prefix(next.length);
  }
  return true;
}

std::string lettersAndDigits(std::string word) {
  if (holdsOnlyLettersAndDigits(word))
    return word;
  std::string kept;
  for (const std::string_view character : graphemes(word)) {
    if (isLetterOrDigit(firstCodePoint(character).value))
      kept.append(character);
  }
  return kept;
}

/// Hands each token to `visit`, in the order of the text.
template<typename Visit>
void tokenize(std::string_view text, Visit visit) {
  icu::BreakIterator* words = wordIterator();
  if (words == nullptr)
    return;
  icu::UnicodeString wide = icu::UnicodeString::fromUTF8({text.data(), static_cast<int32_t>(text.size())});
  wide.findAndReplace(icu::UnicodeString(u'#'), icu::UnicodeString(u' '));
  words->setText(wide);
  int32_t begin = words->first();
  for (int32_t end = words->next(); end != icu::BreakIterator::DONE; end = words->next()) {
    if (words->getRuleStatus() >= UBRK_WORD_NONE_LIMIT) {
      std::string word;
      const std::string token = lettersAndDigits(wide.tempSubStringBetween(begin, end).toUTF8String(word));
      if (!token.empty())
        visit(token);
    }
    begin = end;
  }
}

bool mayBeOfLetter(char byte) {
  return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || (byte & 0x80) != 0;
}

/// The first full stop at or after `from` with something like a letter on both sides, or npos.
std::size_t findInnerStop(std::string_view text, std::size_t from) {
  std::size_t stop = text.find('.', from);
  while (stop != std::string_view::npos && (stop == 0 || stop + 1 == text.size() ||
                                            !mayBeOfLetter(text[stop - 1]) || !mayBeOfLetter(text[stop + 1])))
    stop = text.find('.', stop + 1);
  return stop;
}

/// The start of what stands before the end of the text without white space.
std::size_t beginOfLastPiece(std::string_view text) {
  while (!text.empty()) {
    const CodePoint last = lastCodePoint(text);
    if (isWhiteSpace(last.value))
      break;
    text.remove_suffix(last.length);
  }
  return text.size();
}

} // namespace

std::string dottedPieces(std::string_view text) {
  std::string pieces;
  std::size_t begin = 0;
  for (std::size_t stop = findInnerStop(text, 0); stop != std::string_view::npos;
       stop = findInnerStop(text, begin)) {
    begin += beginOfLastPiece(text.substr(begin, stop - begin));
    const std::size_t end = findWhiteSpace(text, stop);
    pieces.append(text.substr(begin, end - begin)).push_back(' ');
    begin = end;
  }
  return pieces;
}

WordList extractDottedKeywords(std::string_view text, const StopWords& stopWords) {
  const std::string pieces = dottedPieces(text);
  return pieces.empty() ? WordList() : extractKeywords(pieces, stopWords);
}

WordList extractKeywords(std::string_view text, const StopWords& stopWords) {
  WordList::Builder keywords;
  std::unordered_set<std::string> seen;
  tokenize(text, [&](const std::string& token) {
    std::string key = folded(token);
    if (stopWords.contains(key) || graphemeCount(key) < shortestKeyword)
      return;
    if (seen.insert(std::move(key)).second)
      keywords.append(token);
  });
  return keywords.list();
}

std::vector<std::string> extractSearchTerms(std::string_view text, const StopWords& stopWords) {
  std::vector<std::string> terms;
  std::unordered_set<std::string> seen;
  tokenize(text, [&](const std::string& token) {
    std::string key = folded(token);
    if (!stopWords.contains(key) && seen.insert(key).second)
      terms.push_back(std::move(key));
  });
  return terms;
}

} // namespace notlet::KeywordExtractor
