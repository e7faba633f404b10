#pragma once

#include <cstddef>
#include <queue>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/NotletEntry.h"
#include "core/Text.h"

namespace notlet {

/// The hashtags in use, counted as notlets come and go in any order. Answers as HashtagSuggestionService does
/// for the notlets present.
class HashtagTallies {
 public:
  HashtagTallies() = default;
  // The ranking points into the tallies.
  HashtagTallies(const HashtagTallies&) = delete;
  HashtagTallies& operator=(const HashtagTallies&) = delete;

  void add(const NotletEntry& notlet);
  /// Takes back what add() counted; hashtags and creation time must be those it was added with.
  void remove(const NotletEntry& notlet);
  void clear();

  /// As HashtagParser::writtenTag() writes them, most used first. Valid until the next change.
  [[nodiscard]] const std::vector<std::string>& usedHashtags() const;
  /// The tag must be folded.
  [[nodiscard]] bool isUsed(std::string_view tag) const;
  [[nodiscard]] std::vector<std::string> suggestions(std::string_view prefix, std::size_t limit) const;

 private:
  /// The uses of one tag. Two heaps give the latest use in short time after any removal: what was removed
  /// waits until it comes to the top.
  struct Tally {
    std::size_t uses = 0;
    bool changed = false;
    std::priority_queue<Timestamp> times;
    std::priority_queue<Timestamp> removed;

    [[nodiscard]] Timestamp latest() const { return times.top(); }
    void forgetRemoved();
  };
  using Tallies = std::unordered_map<std::string, Tally, TextHash, std::equal_to<>>;
  using Entry = Tallies::value_type;

  static bool ranksBefore(const Entry* left, const Entry* right);
  void markChanged(Entry& entry);
  void bringUpToDate() const;

  Tallies m_tallies;
  // Ranked when somebody asks: a thousand notlets may come before that.
  mutable std::vector<Entry*> m_ranking;
  mutable std::vector<Entry*> m_changed;
  mutable std::vector<std::string> m_usedHashtags;
};

} // namespace notlet
