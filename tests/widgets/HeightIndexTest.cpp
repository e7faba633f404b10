#include "widgets/HeightIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace notlet {

namespace {

constexpr int estimate = 40;

/// The same by the plainest means.
struct PlainHeights {
  std::vector<int> heights;

  [[nodiscard]] std::int64_t top(std::size_t row) const {
    return std::accumulate(heights.begin(), heights.begin() + static_cast<std::ptrdiff_t>(row),
                           std::int64_t{0});
  }
  [[nodiscard]] std::size_t rowAt(std::int64_t distance) const {
    std::size_t row = 0;
    for (; row + 1 < heights.size() && distance >= heights[row]; ++row)
      distance -= heights[row];
    return row;
  }
  [[nodiscard]] auto at(std::size_t row) { return heights.begin() + static_cast<std::ptrdiff_t>(row); }
};

} // namespace

TEST(HeightIndex, AgreesWithAPlainVectorThroughRandomChanges) {
  std::mt19937 random(11);
  const auto below = [&](std::size_t limit) { return static_cast<std::size_t>(random()) % limit; };
  HeightIndex index;
  PlainHeights plain;
  plain.heights.assign(60, estimate);
  index.reset(60, estimate);
  for (int step = 0; step < 20'000; ++step) {
    const std::size_t count = plain.heights.size();
    const std::size_t row = below(count + 1);
    const std::size_t some = std::min(below(5), count - row);
    switch (below(count > 400 ? 3 : 5)) {
    case 0:
      index.remove(row, some);
      plain.heights.erase(plain.at(row), plain.at(row + some));
      break;
    case 1:
      index.forget(row, some);
      std::fill(plain.at(row), plain.at(row + some), estimate);
      break;
    case 2:
      if (row < count)
        index.set(row, plain.heights[row] = 1 + static_cast<int>(below(200)));
      break;
    default:
      index.insert(row, some + 1);
      plain.heights.insert(plain.at(row), some + 1, estimate);
    }
    ASSERT_EQ(index.count(), plain.heights.size());
    const std::size_t probe = below(plain.heights.size() + 1);
    ASSERT_EQ(index.top(probe), plain.top(probe)) << step;
    if (plain.heights.empty())
      continue;
    const auto whole = plain.top(plain.heights.size());
    for (const std::int64_t distance :
         {std::int64_t{-5}, std::int64_t{0}, plain.top(probe), plain.top(probe) - 1,
          std::int64_t(below(static_cast<std::size_t>(whole))), whole, 2 * whole})
      ASSERT_EQ(index.rowAt(distance), plain.rowAt(distance)) << step << " at " << distance;
  }
}

// Whatever is forgotten, it is not what is on the screen.
TEST(HeightIndex, ForgetsWhatIsFarthestFromTheRowSetLast) {
  HeightIndex index;
  index.reset(10'000'000, estimate);
  for (std::size_t row = 0; row < 5 * HeightIndex::mostKnown; ++row) {
    index.set(row, 50);
    EXPECT_EQ(index.known(row - std::min<std::size_t>(row, 1000)), 50);
  }
  EXPECT_FALSE(index.known(0));
  for (std::size_t row = 5 * HeightIndex::mostKnown; row-- > 0;)
    index.set(row, 60);
  EXPECT_EQ(index.known(0), 60);
  EXPECT_EQ(index.top(HeightIndex::mostKnown), static_cast<std::int64_t>(HeightIndex::mostKnown) * 60);
  EXPECT_EQ(index.top(10'000'000), 400'000'000 + static_cast<std::int64_t>(HeightIndex::mostKnown) * 20);
}

} // namespace notlet
