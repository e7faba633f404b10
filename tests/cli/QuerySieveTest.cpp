#include "cli/QuerySieve.h"

#include <gtest/gtest.h>

#include "core/RandomText.h"

namespace notlet {
namespace {

bool admits(QuerySieve& sieve, const NotletEntry& notlet) {
  if (sieve.looksAtTags() && !sieve.admitsTags(notlet.hashtags.packed()))
    return false;
  if (!sieve.looksAtText())
    return true;
  const RowFilter::Answer answer = sieve.admitsText(notlet.content);
  return answer == RowFilter::Answer::Yes ||
         (answer == RowFilter::Answer::AskWords &&
          sieve.admitsWords(notlet.hashtags.packed(), notlet.keywords.packed()));
}

std::string anyQuery(RandomText& random, const std::string& text) {
  if (random.oneIn(3))
    return random.text(3);
  const std::string_view piece =
      std::string_view(text).substr(random.below(text.size()), 1 + random.below(9));
  return std::string(random.oneIn(2) ? piece : random.word());
}

// What it does not admit is never looked at again; what it is certain of is not, either.
TEST(QuerySieveTest, agreesWithTheSelection) {
  RandomText random(21);
  int held = 0;
  int passedOver = 0;
  for (int round = 0; round < 20'000; ++round) {
    NotletEntry notlet = makeNotlet(random.text(8) + "x", Timestamp{}).value();
    if (random.oneIn(4))
      notlet.keywords = {}; // Cut by other rules.
    const std::string query = anyQuery(random, notlet.content.str());
    std::vector<std::string> tags;
    if (random.oneIn(8) && !notlet.hashtags.empty())
      tags.emplace_back(*notlet.hashtags.begin());
    const auto selection = Selection::make(query, tags);
    ASSERT_TRUE(selection);
    QuerySieve sieve(*selection);
    const bool isHeld = selection->holds(notlet);
    const bool isAdmitted = admits(sieve, notlet);
    ASSERT_TRUE(isAdmitted || !isHeld) << query << " in " << notlet.content.view();
    ASSERT_TRUE(isHeld || !isAdmitted || !sieve.isCertain()) << query << " in " << notlet.content.view();
    held += isHeld ? 1 : 0;
    passedOver += isAdmitted ? 0 : 1;
  }
  EXPECT_GT(held, 4000);
  EXPECT_GT(passedOver, 4000);
}

} // namespace
} // namespace notlet
