#pragma once

#include <string_view>

namespace notlet {

/// Decides which rows a scan hands out, from their columns as they lie in the store, before anything of them
/// is copied: what a scan of many rows for a few takes its time for is the rows it passes over.
class RowFilter {
 public:
  RowFilter() = default;
  RowFilter(const RowFilter&) = delete;
  RowFilter& operator=(const RowFilter&) = delete;
  virtual ~RowFilter() = default;

  /// What is not looked at is not read.
  [[nodiscard]] virtual bool looksAtTags() const = 0;
  [[nodiscard]] virtual bool looksAtText() const = 0;

  enum class Answer { No, Yes, AskWords };

  // A row is admitted when its hashtags are and its text or, where that does not decide, its words are. Lists
  // of words are packed as WordList packs them.
  [[nodiscard]] virtual bool admitsTags(std::string_view hashtags) = 0;
  [[nodiscard]] virtual Answer admitsText(std::string_view content) = 0;
  /// Of the row whose text was looked at last.
  [[nodiscard]] virtual bool admitsWords(std::string_view hashtags, std::string_view keywords) = 0;
};

} // namespace notlet
