#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace notlet {

/// The heights of a long list of rows in pixels, of which only those that were looked at are known; every
/// other row counts with one estimate.
///
/// Ten million rows take the same few kilobytes and microseconds as ten: only the known heights are kept, at
/// most `mostKnown` of them, and the ones farthest from the row that was set last are forgotten first.
class HeightIndex {
 public:
  static constexpr std::size_t mostKnown = 2048;

  /// Forgets everything. The estimate is at least one pixel.
  void reset(std::size_t count, int estimate);
  void setEstimate(int estimate) { m_estimate = estimate; }
  [[nodiscard]] int estimate() const { return m_estimate; }
  /// Makes room for rows of unknown heights.
  void insert(std::size_t first, std::size_t count);
  void remove(std::size_t first, std::size_t count);
  /// Makes the heights unknown again.
  void forget(std::size_t first, std::size_t count);
  /// The height is at least one pixel.
  void set(std::size_t row, int height);

  [[nodiscard]] std::size_t count() const { return m_count; }
  [[nodiscard]] std::optional<int> known(std::size_t row) const;
  /// The sum of the heights of all rows before this one; `count()` gives the height of all.
  [[nodiscard]] std::int64_t top(std::size_t row) const;
  /// The row that covers this distance from the top; the last one beyond the end. There must be rows.
  [[nodiscard]] std::size_t rowAt(std::int64_t distance) const;

 private:
  struct Known {
    std::size_t row;
    int height;
  };

  [[nodiscard]] std::vector<Known>::const_iterator find(std::size_t row) const;

  std::size_t m_count = 0;
  int m_estimate = 1;
  std::vector<Known> m_known; // By row.
};

} // namespace notlet
