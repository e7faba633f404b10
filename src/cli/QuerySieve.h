#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "cli/Selection.h"
#include "core/TextSieve.h"
#include "storage/RowFilter.h"

namespace notlet {

/// Holds a selection against rows as they lie in the store. It admits every notlet that the selection holds,
/// and few others. It takes for granted what every writer keeps: hashtags and keywords are those of the text.
class QuerySieve : public RowFilter {
 public:
  explicit QuerySieve(const Selection& selection);

  [[nodiscard]] bool looksAtTags() const override { return !m_tags.empty(); }
  [[nodiscard]] bool looksAtText() const override { return !m_terms.empty() || m_phrase.has_value(); }
  [[nodiscard]] bool admitsTags(std::string_view hashtags) override;
  [[nodiscard]] Answer admitsText(std::string_view content) override;
  [[nodiscard]] bool admitsWords(std::string_view hashtags, std::string_view keywords) override;

  /// Whether the selection holds the row that was admitted last; if not, only it can tell.
  [[nodiscard]] bool isCertain() const;

 private:
  using Verdict = TextSieve::Verdict;

  std::vector<TextSieve> m_tags;
  std::vector<TextSieve> m_terms;
  /// Left out where a text that holds it holds all the terms.
  std::optional<TextSieve> m_phrase;

  // What is known of the row.
  Verdict m_tagsStand = Verdict::Yes;
  Verdict m_restStands = Verdict::Yes;
  std::vector<Verdict> m_termsInText;
};

} // namespace notlet
