#include "storage/NotletDatabase.h"

#include "storage/StoreFixture.h"

namespace notlet {
namespace {

class NotletDatabaseTest : public StoreFixture {};

TEST_F(NotletDatabaseTest, allFieldsComeBackExactly) {
  using namespace std::string_literals;
  NotletEntry plain = notletAt(1);
  NotletEntry odd =
      notletAt(2, "before\0after \xF0\x9F\x8E\x89\r\n\xE2\x80\xA8 \xC2\xA0 'quote\"; DROP TABLE"s);
  odd.updatedAt = odd.createdAt + std::chrono::microseconds(1);
  odd.hashtags = {};
  odd.keywords = {};
  NotletEntry early = notletAt(0);
  early.createdAt = Timestamp(std::chrono::microseconds(-1));
  NotletEntry large = notletAt(3, std::string(3'000'000, 'x'));
  storeElsewhere({plain, odd, early, large});
  const auto stored = openStore()->newest(10);
  ASSERT_TRUE(stored);
  EXPECT_EQ(*stored, (std::vector{large, odd, plain, early}));
}

} // namespace
} // namespace notlet
