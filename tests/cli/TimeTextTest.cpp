#include "cli/TimeText.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace notlet {
namespace {

Timestamp at(std::int64_t microseconds) {
  return Timestamp(std::chrono::microseconds(microseconds));
}

TEST(TimeTextTest, writesRfc3339InUtc) {
  const std::vector<std::pair<std::int64_t, std::string>> cases{
      {0, "1970-01-01T00:00:00.000000Z"},
      {-1, "1969-12-31T23:59:59.999999Z"},
      {1'582'934'400'000'001, "2020-02-29T00:00:00.000001Z"},
      {std::numeric_limits<std::int64_t>::min(), "0000-01-01T00:00:00.000000Z"},
      {std::numeric_limits<std::int64_t>::max(), "9999-12-31T23:59:59.999999Z"},
  };
  for (const auto& [time, text] : cases)
    EXPECT_EQ(utcText(at(time)), text);
}

TEST(TimeTextTest, writesTheLocalTimeOfAnyYear) {
  setenv("TZ", "EST5EDT,M3.2.0,M11.1.0", 1);
  tzset();
  EXPECT_EQ(localText(parseTime("2300-07-01T00:00:00Z").value()), "2300-06-30 20:00");
  EXPECT_EQ(localText(parseTime("1000-01-01T05:00:59Z").value()), "1000-01-01 00:00");
  EXPECT_EQ(localText(Timestamp::max()), "9999-12-31T23:59:59.999999Z");
  unsetenv("TZ");
  tzset();
}

TEST(TimeTextTest, readsBackWhatItWrites) {
  std::mt19937_64 random(1);
  std::uniform_int_distribution<std::int64_t> times(-62'167'219'200'000'000, 253'402'300'799'999'999);
  for (int round = 0; round < 2000; ++round) {
    const Timestamp time = at(times(random));
    ASSERT_EQ(parseTime(utcText(time)), time) << utcText(time);
  }
}

TEST(TimeTextTest, readsOtherFormsOfTheSameTime) {
  for (const char* text :
       {"2026-11-22T21:04:05.5Z", "2026-11-22t21:04:05.500000999z", "2026-11-22 22:34:05.5+01:30",
        "2026-11-21T21:34:05.50-23:30", "2026-11-22T20:04:05.5-01:00"})
    EXPECT_EQ(parseTime(text), parseTime("2026-11-22T21:04:05.500000Z")) << text;
  EXPECT_EQ(parseTime("2016-12-31T23:59:60Z"), parseTime("2017-01-01T00:00:00Z"));
}

TEST(TimeTextTest, refusesWhatIsNoTime) {
  for (const char* text : {"",
                           "2026",
                           "2026-11-22",
                           "2026-11-22T21:04:05",
                           "2026-11-22T21:04Z",
                           "2026-02-29T00:00:00Z",
                           "2026-13-01T00:00:00Z",
                           "2026-00-01T00:00:00Z",
                           "2026-01-32T00:00:00Z",
                           "2026-01-01T24:00:00Z",
                           "2026-01-01T00:60:00Z",
                           "2026-01-01T00:00:61Z",
                           "2026-01-01T00:00:00.Z",
                           "2026-01-01T00:00:00Z ",
                           " 2026-01-01T00:00:00Z",
                           "2026-01-01T00:00:00+1:00",
                           "2026-01-01T00:00:00+01:60",
                           "2026-01-01T00:00:00-24:00",
                           "+026-01-01T00:00:00Z",
                           "2026-1-01T00:00:00Z",
                           "20260101T000000Z",
                           "2026-01-01T00:00:00,5Z"})
    EXPECT_FALSE(parseTime(text)) << text;
}

} // namespace
} // namespace notlet
