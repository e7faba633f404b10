#include "platform/LaunchMessage.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace notlet {

namespace {

using Kind = LaunchRequest::Kind;
using Taken = Result<std::optional<LaunchRequest>>;
using namespace std::string_literals;

/// What a reader makes of the bytes when they come in portions of this size.
Taken readInPortions(std::string_view bytes, std::size_t size) {
  LaunchMessageReader reader;
  while (bytes.size() > size) {
    const auto early = reader.take(bytes.substr(0, size));
    if (!early)
      return early;
    EXPECT_FALSE(early->has_value());
    bytes.remove_prefix(size);
  }
  return reader.take(bytes);
}

/// A message with these fields and a header that fits them.
std::string message(const std::string& fields) {
  return "NLT1\0\0"s + static_cast<char>(fields.size() >> 8) + static_cast<char>(fields.size() & 0xff) +
         fields;
}

} // namespace

TEST(LaunchMessageTest, ArrivesAsSentInWhateverPortions) {
  const std::vector<LaunchRequest> requests{
      {Kind::activate, {}, ""},
      {Kind::activate, {}, "token with spaces_TIME123"},
      {Kind::capture, {}, "gnome-shell/x/1-0"},
      {Kind::open, {"notlet:x"}, ""},
      {Kind::open,
       {"notlet:ä\n\r\t\"", "https://example.org/", " ", "bytes that are not UTF-8: \xff"},
       "token"},
      {Kind::open, std::vector<std::string>(launchLinkLimit, "notlet:many"), ""},
  };
  for (const LaunchRequest& request : requests) {
    const Result<std::string> bytes = encodeLaunchMessage(request);
    ASSERT_TRUE(bytes);
    for (const std::size_t size : {std::size_t{1}, std::size_t{7}, std::size_t{4096}, bytes->size()})
      EXPECT_EQ(readInPortions(*bytes, size), Taken(request));
  }
}

TEST(LaunchMessageTest, TakesUpToTheLimitsAndNothingBeyond) {
  const std::size_t besidesTheLink = encodeLaunchMessage({Kind::open, {"x"}, ""})->size() - 1;
  LaunchRequest request{Kind::open, {std::string(launchMessageLimit - besidesTheLink, 'x')}, ""};
  const Result<std::string> largest = encodeLaunchMessage(request);
  ASSERT_TRUE(largest);
  EXPECT_EQ(largest->size(), launchMessageLimit);
  EXPECT_EQ(readInPortions(*largest, 65536), Taken(request));

  request.urls.front().push_back('x');
  EXPECT_EQ(encodeLaunchMessage(request).error().message,
            "The links are too long: Notlet takes at most 4 MB of them at a time.");
  request.urls.assign(launchLinkLimit + 1, "x");
  EXPECT_EQ(encodeLaunchMessage(request).error().message,
            "There are too many links: Notlet takes at most 1000 of them at a time.");
  for (const LaunchRequest& unclear :
       {LaunchRequest{Kind::open, {"a\0b"s}, ""}, {Kind::capture, {}, "a\0b"s}})
    EXPECT_FALSE(encodeLaunchMessage(unclear));
}

// A peer that says what it cannot mean must not be able to keep a place or memory.
TEST(LaunchMessageTest, RefusesAtTheFirstWrongByte) {
  struct Case {
    std::string bytes;
    std::size_t refusedAfter;
  };
  std::string tooMany = "open\0\0"s;
  for (std::size_t count = 0; count <= launchLinkLimit; ++count)
    tooMany += "x\0"s;
  const std::vector<Case> cases{
      {"GET / HTTP/1.1\r\n\r\n", 1},
      {"\n", 1},
      {"NLT2\0\0\0\1x"s, 4},
      {"NLT1\0\x40\0\0"s, 8},
      {"NLT1\xff\xff\xff\xff", 8},
      {"NLT1\0\0\0\0"s, 8},
      {message("activate\0\0"s) + "x", 19},
      {message("capture\0"s), 16},
      {message("capture"), 15},
      {message("Capture\0\0"s), 17},
      {message("capture\0\0notlet:x\0"s), 26},
      {message("open\0\0"s), 14},
      {message("open\0\0x\0\0"s), 17},
      {message("open\0\0x"s), 15},
      {message(tooMany), 8 + tooMany.size()},
  };
  for (const Case& each : cases) {
    LaunchMessageReader reader;
    std::size_t taken = 0;
    while (taken < each.bytes.size() && reader.take(std::string_view(each.bytes).substr(taken, 1)))
      ++taken;
    EXPECT_EQ(taken + 1, each.refusedAfter) << testing::PrintToString(each.bytes.substr(0, 30));
  }
}

// Whatever bytes come: either they are refused or incomplete, or they are what the request would be sent as.
TEST(LaunchMessageTest, MutilatedMessagesAreNeverMisread) {
  std::mt19937 random(20261123);
  const std::string whole = *encodeLaunchMessage({Kind::open, {"notlet:one", "notlet:two"}, "token"});
  int understood = 0;
  for (int round = 0; round < 20'000; ++round) {
    std::string bytes = whole;
    for (auto changes = 1 + random() % 3; changes > 0; --changes) {
      const std::size_t place = random() % bytes.size();
      if (random() % 4 == 0)
        bytes.erase(place, 1);
      else
        bytes[place] = static_cast<char>(random() % 3 == 0 ? random() % 256 : random() % 2);
    }
    const auto request = readInPortions(bytes, bytes.size());
    if (!request || !*request)
      continue;
    ++understood;
    EXPECT_EQ(encodeLaunchMessage(**request), bytes);
  }
  EXPECT_GT(understood, 100);
}

} // namespace notlet
