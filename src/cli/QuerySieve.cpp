#include "cli/QuerySieve.h"

#include <algorithm>

#include "core/KeywordExtractor.h"
#include "core/Text.h"

namespace notlet {

namespace {

using Verdict = TextSieve::Verdict;

bool isAsciiLetterOrDigit(char byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

/// Whether a term may be one of the keywords that KeywordExtractor::extractDottedKeywords() finds in the
/// pieces.
bool mayBeDotted(const TextSieve& term, std::string pieces) {
  if (pieces.empty())
    return false;
  if (std::ranges::any_of(pieces, [](char byte) { return (byte & 0x80) != 0; }))
    return true;
  std::erase_if(pieces, [](char byte) { return byte != ' ' && !isAsciiLetterOrDigit(byte); });
  return term.inText(pieces) != Verdict::No;
}

} // namespace

QuerySieve::QuerySieve(const Selection& selection) {
  const SearchQuery& query = selection.query();
  const auto addTo = [](std::vector<TextSieve>& sieves, const std::vector<std::string>& needles) {
    for (const std::string& needle : needles)
      sieves.emplace_back(needle);
  };
  addTo(m_tags, selection.tags().tags);
  addTo(m_tags, query.tags);
  addTo(m_terms, query.terms);
  const auto isInPhrase = [&](const std::string& term) { return containsCanonically(query.phrase, term); };
  if (!query.matchesEverything() && (query.isPlainPhrase() || !std::ranges::all_of(query.terms, isInPhrase)))
    m_phrase.emplace(query.phrase);
}

bool QuerySieve::admitsTags(std::string_view hashtags) {
  m_tagsStand = Verdict::Yes;
  for (const TextSieve& tag : m_tags)
    m_tagsStand = std::min(m_tagsStand, tag.amongWords(hashtags));
  return m_tagsStand != Verdict::No;
}

RowFilter::Answer QuerySieve::admitsText(std::string_view content) {
  if (!std::ranges::all_of(m_terms, [&](const TextSieve& term) { return term.mayBeSpelledIn(content); }))
    return Answer::No;
  m_termsInText.clear();
  m_restStands = m_terms.empty() ? Verdict::No : Verdict::Yes;
  for (const TextSieve& term : m_terms) {
    Verdict stands = term.inText(content);
    if (stands == Verdict::No && mayBeDotted(term, KeywordExtractor::dottedPieces(content)))
      stands = Verdict::Maybe;
    m_termsInText.push_back(stands);
    m_restStands = std::min(m_restStands, stands);
  }
  if (m_phrase && m_restStands != Verdict::Yes)
    m_restStands = std::max(m_restStands, m_phrase->inText(content));
  if (m_restStands != Verdict::No)
    return Answer::Yes;
  return m_terms.empty() ? Answer::No : Answer::AskWords;
}

bool QuerySieve::admitsWords(std::string_view hashtags, std::string_view keywords) {
  m_restStands = Verdict::Yes;
  for (std::size_t index = 0; index < m_terms.size() && m_restStands != Verdict::No; ++index) {
    const TextSieve& term = m_terms[index];
    Verdict stands = m_termsInText[index];
    if (stands == Verdict::No)
      stands = std::max(term.amongWords(hashtags), term.amongWords(keywords));
    m_restStands = std::min(m_restStands, stands);
  }
  return m_restStands != Verdict::No;
}

bool QuerySieve::isCertain() const {
  return m_tagsStand == Verdict::Yes && m_restStands == Verdict::Yes;
}

} // namespace notlet
