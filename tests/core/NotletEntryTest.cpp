#include "core/NotletEntry.h"

#include <gmock/gmock.h>
#include <set>

#include "core/HashtagParser.h"
#include "core/KeywordExtractor.h"

namespace notlet {

namespace {

using testing::ElementsAre;

constexpr Timestamp noon{std::chrono::hours(12)};
constexpr Timestamp later = noon + std::chrono::seconds(1);

TEST(NotletEntryTest, ATypedTextBecomesATrimmedNotlet) {
  const auto notlet = makeNotlet("\u3000 hello #Work \u2028\n", noon);

  ASSERT_TRUE(notlet);
  EXPECT_EQ(notlet->content, "hello #Work");
  EXPECT_THAT(notlet->hashtags, ElementsAre("Work"));
  EXPECT_THAT(notlet->keywords, ElementsAre("hello", "Work"));
  EXPECT_EQ(notlet->createdAt, noon);
  EXPECT_EQ(notlet->updatedAt, std::nullopt);
  EXPECT_NE(notlet->id, makeNotlet("hello", noon)->id);
}

TEST(NotletEntryTest, ATextOfWhiteSpaceMakesNothing) {
  for (const char* text : {"", "   ", "\n\r\n\t", "\u00A0\u2003\u0085"})
    EXPECT_FALSE(makeNotlet(text, noon)) << testing::PrintToString(text);
}

TEST(NotletEntryTest, ATextIsKeptByteForByteThroughCopiesAndMoves) {
  for (const std::string& bytes :
       {std::string(), std::string("a"), std::string("a\0b\0", 4), std::string(100'000, '\xFF')}) {
    const CompactText text(bytes);
    EXPECT_EQ(text.str(), bytes);
    EXPECT_EQ(text.empty(), bytes.empty());
    EXPECT_FALSE(text == bytes + '\0');

    CompactText copy = text;
    const CompactText& itself = copy;
    copy = itself;
    EXPECT_EQ(copy, text);
    CompactText taken = std::move(copy);
    copy = "other";
    std::swap(copy, taken);
    EXPECT_EQ(copy, bytes);
    EXPECT_EQ(taken, "other");
    copy = copy.view().substr(bytes.size() / 2);
    EXPECT_EQ(copy, bytes.substr(bytes.size() / 2));
    EXPECT_EQ(text, bytes);
  }
}

TEST(NotletEntryTest, AnEditRecomputesWhatIsDerived) {
  auto notlet = makeNotlet("buy milk #shop", noon).value();
  const Uuid id = notlet.id;

  EXPECT_TRUE(applyEdit(notlet, "  Plan #Q3 ", later));

  EXPECT_EQ(notlet.content, "Plan #Q3");
  EXPECT_THAT(notlet.hashtags, ElementsAre("Q3"));
  EXPECT_THAT(notlet.keywords, ElementsAre("Plan"));
  EXPECT_EQ(notlet.createdAt, noon);
  EXPECT_EQ(notlet.updatedAt, later);
  EXPECT_EQ(notlet.id, id);
}

TEST(NotletEntryTest, AnEditToWhiteSpaceChangesNothing) {
  auto notlet = makeNotlet("buy milk #shop", noon).value();
  const NotletEntry before = notlet;

  EXPECT_FALSE(applyEdit(notlet, " \n ", later));
  EXPECT_EQ(notlet, before);
}

TEST(NotletEntryTest, ADraftMayBeAPieceOfTheContentItReplaces) {
  auto notlet = makeNotlet("buy milk #shop and quite a lot more than that", noon).value();

  EXPECT_TRUE(applyEdit(notlet, std::string_view(notlet.content).substr(4, 10), later));
  EXPECT_EQ(notlet.content, "milk #shop");
}

TEST(NotletEntryTest, IdentifiersThatDifferInAFewBytesAreFoundAsFastAsRandomOnes) {
  for (std::size_t counter = 0; counter + 1 < Uuid().bytes.size(); ++counter) {
    std::set<std::size_t> buckets;
    for (unsigned number = 0; number < 1U << 13; ++number) {
      Uuid id;
      id.bytes[counter] = static_cast<std::uint8_t>(number >> 8);
      id.bytes[counter + 1] = static_cast<std::uint8_t>(number);
      buckets.insert(std::hash<Uuid>()(id) % 8209);
    }
    // Of as many random numbers, 63 in a hundred are different ones.
    EXPECT_GT(buckets.size(), 5000) << "the bytes from " << counter << " on";
  }
}

TEST(NotletEntryTest, ListsShowTheNewestFirstAndEqualTimesInAFixedOrder) {
  auto older = makeNotlet("older", noon).value();
  auto newer = makeNotlet("newer", later).value();
  EXPECT_TRUE(listedBefore(newer, older));
  EXPECT_FALSE(listedBefore(older, newer));

  newer.createdAt = noon;
  EXPECT_NE(listedBefore(newer, older), listedBefore(older, newer));
}

} // namespace

} // namespace notlet
