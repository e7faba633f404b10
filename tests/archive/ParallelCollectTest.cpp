#include "archive/ParallelCollect.h"

#include <gtest/gtest.h>

#include <numeric>

namespace notlet {
namespace {

// Whatever the number of processors: nothing left out, nothing twice, and in order.
TEST(ParallelCollectTest, PartsTogetherAreTheWholeInOrder) {
  for (const std::size_t first : {0UZ, 7UZ}) {
    for (const std::size_t count : {0UZ, 1UZ, 9UZ, 10UZ, 19UZ, 20UZ, 21UZ, 1000UZ}) {
      const auto found = collectInParallel(first, first + count, 10, [](std::size_t begin, std::size_t end) {
        std::vector<std::size_t> part(end - begin);
        std::iota(part.begin(), part.end(), begin);
        return part;
      });
      std::vector<std::size_t> whole(count);
      std::iota(whole.begin(), whole.end(), first);
      EXPECT_EQ(found, whole) << count << " from " << first;
    }
  }
}

} // namespace
} // namespace notlet
