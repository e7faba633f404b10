#include <gmock/gmock.h>

#include "core/FoldedArchive.h"
#include "core/RandomText.h"
#include "core/SearchService.h"
#include "core/Text.h"

namespace notlet {

namespace {

using testing::ElementsAre;

NotletEntry notletOf(std::string_view text) {
  return makeNotlet(text, Timestamp{}).value();
}

/// Nothing more of its keywords is in memory.
NotletEntry asListed(NotletEntry notlet) {
  notlet.keywords = keywordsBeyondText(notlet);
  return notlet;
}

bool matchesPrepared(const NotletEntry& notlet, std::string_view query) {
  FoldedArchive archive;
  return archive.matches(archive.add(asListed(notlet)), SearchQuery::parse(query));
}

TEST(SearchTest, ANotletIsFoundByTextTagsKeywordsAndTheWholeQuery) {
  struct {
    std::string_view text, query;
    bool expected;
  } const cases[] = {
      {"anything", "", true},
      {"anything", " \n\u3000", true},
      {"Quarterly report", "rep", true},
      {"Fix printer #Work", "#work", true},
      {"work on the printer", "#work", false},
      {"Fix printer #Work", "#wo", false},
      {"Fix printer #Work", "wo", true},
      {"The report #Work", "#work report", true},
      {"The report", "#work report", false},
      {"#work only", "#work report", false},
      {"#work #report", "#report #work", true},
      {"don't forget", "dont", true},
      {"don't forget", "don't", true},
      {"caf'e cafe\u0301", "cafe", true},
      {"ΟΔΟ'Σ ΟΔΟΣΑ", "οδος", true},
      {"other things", "the", true},
      {"no such word", "the", false},
      {"wow!!!", "!!!", true},
      {"wow!!", "!!!", false},
      {"Report", "Report REPORT", true},
      {"café", "cafe", false},
      {"café", "CAFE\u0301", true},
      {"#cafe\u0301", "#cafe", true},
      {"İSTANBUL", "i\u0307stanbul", true},
      {"İSTANBUL", "istanbul", false},
      {"ΟΔΟΣ", "οδος", true},
      {"日本語を勉強する", "勉強", true},
      {"love ❤\uFE0F", "❤", true},
      {"semi#colon", "#", true},
      {"and more", "\xFE", false},
      {"I'm late", "I'm", true},
      {"see e.g. there", "E.G.", true},
      {"the U.S. of A", " u.s. ", true},
      {"let x_y be", "x_y", true},
      {"write to a.b@c.de", "A.B@c.de", true},
      {"late: I'm", "I'm late", false},
      {"e.g.\u0301", "e.g.", false},
      {"I'm here #work", "I'm here #work", true},
      {"I'm here #work", "I'm here #wo", false},
      {"I'm here #working", "I'm here #work", false},
  };
  for (const auto& [text, query, expected] : cases) {
    EXPECT_EQ(SearchService::matches(notletOf(text), query), expected) << query << " in " << text;
    EXPECT_EQ(matchesPrepared(notletOf(text), query), expected) << query << " in " << text;
  }
}

TEST(SearchTest, TagsAndKeywordsCountAsWholeWordsWhereverTheyComeFrom) {
  NotletEntry notlet = notletOf("plain");
  notlet.hashtags = {"Secret", "two"};
  notlet.keywords = {"Hidden", "kept"};
  for (const char* query : {"secret", "#TWO", "hidden", "kept plain", "#secret two hidden"}) {
    EXPECT_TRUE(SearchService::matches(notlet, query)) << query;
    EXPECT_TRUE(matchesPrepared(notlet, query)) << query;
  }
  // Stored when a full stop still parted words.
  notlet = notletOf("see README.md in the src.d folder");
  notlet.keywords = {"see", "README", "src", "folder"};
  for (const char* query : {"folder README.md", "readmemd", "srcd see"}) {
    EXPECT_TRUE(SearchService::matches(notlet, query)) << query;
    EXPECT_TRUE(matchesPrepared(notlet, query)) << query;
  }
}

TEST(SearchTest, PartsOfTagsAndKeywordsDoNotCount) {
  NotletEntry notlet = notletOf("plain e.f");
  notlet.hashtags = {"Secret", "two"};
  notlet.keywords = {"Hidden", "kept"};
  for (const char* query : {"secre", "ef", "ecret", "#hidden", "hidde", "two\nkept\nhid", "#secret #plain"}) {
    EXPECT_FALSE(SearchService::matches(notlet, query)) << query;
    EXPECT_FALSE(matchesPrepared(notlet, query)) << query;
  }
}

/// An archive beside the notlets it should hold, changed by chance.
class ChangingArchive {
 public:
  explicit ChangingArchive(unsigned seed) : m_random(seed) {}

  void change() {
    const std::size_t slot = m_notlets.empty() ? 0 : m_random.below(m_notlets.size());
    if (m_notlets.empty() || !m_random.oneIn(3)) {
      m_notlets.emplace_back(m_random.notlet());
      EXPECT_EQ(m_archive.add(asListed(*m_notlets.back())), m_notlets.size() - 1);
    } else if (m_notlets[slot] && m_random.oneIn(2)) {
      m_notlets[slot] = m_random.notlet();
      m_archive.replace(static_cast<FoldedArchive::Slot>(slot), asListed(*m_notlets[slot]));
    } else {
      m_notlets[slot].reset();
      m_archive.remove(static_cast<FoldedArchive::Slot>(slot));
    }
  }

  std::string query() {
    if (m_random.oneIn(3))
      return m_random.text(3);
    const auto& notlet = m_notlets[m_random.below(m_notlets.size())];
    const std::string text = notlet ? notlet->content.str() : std::string("gone");
    // A piece of a text, cut anywhere, even inside a character.
    const std::string piece = text.substr(m_random.below(text.size()), 1 + m_random.below(9));
    return m_random.oneIn(2) ? piece : folded(piece);
  }

  std::vector<FoldedArchive::Slot> expected(std::string_view query) const {
    std::vector<FoldedArchive::Slot> slots;
    for (std::size_t slot = 0; slot < m_notlets.size(); ++slot) {
      if (m_notlets[slot] && SearchService::matches(*m_notlets[slot], query))
        slots.push_back(static_cast<FoldedArchive::Slot>(slot));
    }
    return slots;
  }

  std::vector<FoldedArchive::Slot> collectedInSlices(const SearchQuery& query) {
    std::vector<FoldedArchive::Slot> slots;
    for (FoldedArchive::Slot first = 0; first < m_archive.endSlot();) {
      const auto last = static_cast<FoldedArchive::Slot>(first + 1 + m_random.below(700));
      std::ranges::copy(m_archive.collect(query, first, last), std::back_inserter(slots));
      first = last;
    }
    return slots;
  }

  const FoldedArchive& archive() const { return m_archive; }

 private:
  RandomText m_random;
  FoldedArchive m_archive;
  std::vector<std::optional<NotletEntry>> m_notlets;
};

TEST(SearchTest, ThePreparedFormFindsWhatTheRuleFindsThroughAllChanges) {
  ChangingArchive changing(3);
  std::size_t found = 0;
  std::size_t withMatches = 0;
  for (int round = 0; round < 400; ++round) {
    for (int step = 0; step < 10; ++step)
      changing.change();
    const std::string text = changing.query();
    const auto expected = changing.expected(text);
    const SearchQuery query = SearchQuery::parse(text);
    ASSERT_EQ(changing.archive().collect(query), expected) << text;
    ASSERT_EQ(changing.collectedInSlices(query), expected) << text;
    for (const FoldedArchive::Slot slot : expected)
      ASSERT_TRUE(changing.archive().matches(slot, query)) << text;
    found += expected.size();
    withMatches += expected.empty() ? 0 : 1;
  }
  EXPECT_GT(withMatches, 200U);
  EXPECT_GT(found, 5000U);
}

TEST(SearchTest, FreedSlotsMatchNothingAndAreNotGivenOutAgain) {
  FoldedArchive archive;
  const auto first = archive.add(notletOf("first #tag"));
  const auto second = archive.add(notletOf("second #tag"));
  archive.remove(first);
  archive.remove(first);

  EXPECT_THAT(archive.collect(SearchQuery::parse("")), ElementsAre(second));
  EXPECT_THAT(archive.collect(SearchQuery::parse("#tag")), ElementsAre(second));
  EXPECT_FALSE(archive.matches(first, SearchQuery::parse("")));
  EXPECT_FALSE(archive.matches(archive.endSlot(), SearchQuery::parse("")));
  EXPECT_EQ(archive.add(notletOf("third")), second + 1);

  archive.clear();
  EXPECT_THAT(archive.collect(SearchQuery::parse("")), ElementsAre());
}

} // namespace

} // namespace notlet
