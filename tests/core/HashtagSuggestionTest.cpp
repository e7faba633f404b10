#include <gmock/gmock.h>

#include "core/HashtagParser.h"
#include "core/HashtagSuggestionService.h"
#include "core/HashtagTallies.h"
#include "core/RandomText.h"
#include "core/Text.h"

namespace notlet {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

NotletEntry tagged(int hour, std::initializer_list<std::string_view> tags) {
  NotletEntry notlet;
  notlet.createdAt = Timestamp(std::chrono::hours(hour));
  notlet.hashtags = tags;
  return notlet;
}

TEST(HashtagSuggestionTest, TagsAreRankedByUseAndThenByTime) {
  const std::vector<NotletEntry> notlets = {tagged(10, {"work"}), tagged(9, {"Home", "work"}),
                                            tagged(8, {"home"}), tagged(7, {"gym", "art"})};
  using namespace HashtagSuggestionService;
  EXPECT_THAT(usedHashtags(notlets), ElementsAre("work", "home", "art", "gym"));
  EXPECT_THAT(suggestions("", notlets, 2), ElementsAre("work", "home"));
  EXPECT_THAT(suggestions("Wo", notlets, 8), ElementsAre("work"));
  for (const char* prefix : {"work", "x", "ork"})
    EXPECT_THAT(suggestions(prefix, notlets, 8), IsEmpty()) << prefix;
  EXPECT_THAT(suggestions("", notlets, 0), IsEmpty());
  EXPECT_THAT(usedHashtags({}), IsEmpty());
  EXPECT_THAT(suggestions("", std::span<const NotletEntry>(), 8), IsEmpty());
}

// Lowercase or in canonical form these hold marks, which no hashtag holds.
TEST(HashtagSuggestionTest, AnOfferedTagIsTheSameTagWhenChosen) {
  for (const char* tag :
       {"İz", "AİB", "İΣ", "\u0958\u0932\u092E", "\uFB2A\u05DC\uFB2C", "ÅNGSTRÖM", "\u212A"}) {
    const NotletEntry notlet = tagged(1, {tag});
    HashtagTallies tallies;
    tallies.add(notlet);
    const auto offered = tallies.suggestions("", 8);
    ASSERT_EQ(offered.size(), 1U);
    const std::string chosen = HashtagParser::completingHashtag(offered[0], "#");
    tallies.add(makeNotlet(chosen, Timestamp{}).value());
    EXPECT_EQ(tallies.usedHashtags(), offered) << tag << " became " << chosen;
    EXPECT_THAT(HashtagSuggestionService::usedHashtags({&notlet, 1}), offered);
    EXPECT_THAT(tallies.suggestions(std::string(graphemes(tag).front()), 8).size(),
                graphemeCount(tag) > 1 ? 1 : 0);
  }
}

TEST(HashtagSuggestionTest, ATagsLatestUseGoesBackWhenTheNotletGoes) {
  HashtagTallies tallies;
  const NotletEntry latest = tagged(12, {"early", "both"});
  for (const auto& notlet :
       {latest, tagged(1, {"early", "both"}), tagged(5, {"middle"}), tagged(6, {"middle"})})
    tallies.add(notlet);
  EXPECT_THAT(tallies.usedHashtags(), ElementsAre("both", "early", "middle"));

  tallies.remove(latest);
  tallies.add(tagged(2, {"early"}));
  EXPECT_THAT(tallies.usedHashtags(), ElementsAre("middle", "early", "both"));
}

TEST(HashtagSuggestionTest, TalliesAgreeWithTheRuleThroughAllChanges) {
  RandomText random(4);
  HashtagTallies tallies;
  std::vector<NotletEntry> present;
  for (int round = 0; round < 3000; ++round) {
    // Grows, then shrinks to nothing, over and over: counts and latest uses go both ways.
    const bool grows = present.empty() || random.below(100) >= present.size();
    if (grows) {
      present.push_back(random.notlet());
      tallies.add(present.back());
    } else {
      const std::size_t index = random.below(present.size());
      tallies.remove(present[index]);
      present.erase(present.begin() + static_cast<std::ptrdiff_t>(index));
    }
    if (random.oneIn(3))
      continue;
    ASSERT_EQ(tallies.usedHashtags(), HashtagSuggestionService::usedHashtags(present));
    const std::string prefix(random.word());
    ASSERT_EQ(tallies.suggestions(prefix, 3), HashtagSuggestionService::suggestions(prefix, present, 3))
        << prefix;
  }
  for (const NotletEntry& notlet : present)
    tallies.remove(notlet);
  EXPECT_THAT(tallies.usedHashtags(), IsEmpty());
}

} // namespace

} // namespace notlet
