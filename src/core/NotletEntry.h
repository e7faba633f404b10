#pragma once

#include <optional>
#include <string_view>

#include "core/CompactText.h"
#include "core/Timestamp.h"
#include "core/Uuid.h"
#include "core/WordList.h"

namespace notlet {

/// A note as it is stored. `hashtags` and `keywords` are always those of the current `content`.
struct NotletEntry {
  Uuid id;
  /// UTF-8, trimmed, never empty.
  CompactText content;
  Timestamp createdAt{};
  /// Set by the last successful edit.
  std::optional<Timestamp> updatedAt;
  /// Without "#", in order of first appearance, no two equal after lowercasing.
  WordList hashtags;
  /// In order of first appearance, as written.
  WordList keywords;

  bool operator==(const NotletEntry&) const = default;
};
// A million of them are in memory.
static_assert(sizeof(NotletEntry) <= 64);

/// A new notlet of typed text; nothing when the text is empty after trimming.
[[nodiscard]] std::optional<NotletEntry> makeNotlet(std::string_view text, Timestamp now);

/// Gives an existing notlet the edited text. False, and nothing changed, when that is empty after trimming.
[[nodiscard]] bool applyEdit(NotletEntry& notlet, std::string_view draft, Timestamp now);

/// Those of the keywords that a search does not find in the text as well; nearly always none.
[[nodiscard]] WordList keywordsBeyondText(std::string_view text, WordList::View keywords);
[[nodiscard]] inline WordList keywordsBeyondText(const NotletEntry& notlet) {
  return keywordsBeyondText(notlet.content, notlet.keywords.view());
}

/// The order of every list of notlets: newest first, and a fixed order between equal times.
[[nodiscard]] inline bool listedBefore(const NotletEntry& left, const NotletEntry& right) {
  if (left.createdAt != right.createdAt)
    return left.createdAt > right.createdAt;
  return left.id > right.id;
}

} // namespace notlet
