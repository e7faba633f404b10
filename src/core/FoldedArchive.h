#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/NotletEntry.h"
#include "core/SearchQuery.h"

namespace notlet {

/// The folded texts of an archive, kept so that a search reads memory from end to end. Finds exactly what
/// SearchService::matches finds.
///
/// A notlet is known by its slot. Slots are given out in ascending order, never twice, and a changed notlet
/// keeps its slot; so notlets added in the order of a list are found in that order.
class FoldedArchive {
 public:
  using Slot = std::uint32_t;

  /// Takes a notlet in; the archive keeps no reference to it.
  Slot add(const NotletEntry& notlet);
  /// Gives an occupied slot the notlet's present text.
  void replace(Slot slot, const NotletEntry& notlet);
  /// Frees a slot; it matches nothing from then on. Removing twice does nothing.
  void remove(Slot slot);
  void clear();

  /// One past the last slot given out: the end of the range to search in.
  [[nodiscard]] Slot endSlot() const { return m_endSlot; }
  [[nodiscard]] std::size_t bytesHeld() const;

  [[nodiscard]] bool matches(Slot slot, const SearchQuery& query) const;
  /// The matching slots of [first, last), ascending. A search can be done in slices, from either end.
  [[nodiscard]] std::vector<Slot> collect(const SearchQuery& query, Slot first, Slot last) const;
  [[nodiscard]] std::vector<Slot> collect(const SearchQuery& query) const {
    return collect(query, 0, m_endSlot);
  }

 private:
  /// Where one notlet's bytes end within its page; they begin where the one before ends. A free slot is
  /// empty.
  struct Extent {
    std::size_t contentEnd = 0;
    std::size_t end = 0;
  };

  /// A fixed number of consecutive slots with their bytes in slot order, so that a change moves few bytes.
  struct Page {
    std::string bytes;
    std::vector<Extent> extents;

    [[nodiscard]] std::size_t beginOf(std::size_t index) const;
    [[nodiscard]] bool isFree(std::size_t index) const { return beginOf(index) == extents[index].end; }
    [[nodiscard]] std::size_t indexAt(std::size_t position, std::size_t from) const;
    void put(std::size_t index, std::string_view newBytes, std::size_t contentLength);
  };

  struct Needle;
  class Needles;
  class Search;

  std::vector<Page> m_pages;
  Slot m_endSlot = 0;
};

} // namespace notlet
