#include "core/KeywordExtractor.h"

#include <gmock/gmock.h>
#include <unicode/locid.h>

#include <fstream>
#include <thread>

#include "core/Uuid.h"

namespace notlet {

namespace {

using testing::ElementsAre;

WordList keywords(std::string_view text) {
  return KeywordExtractor::extractKeywords(text, StopWords::defaultList());
}

std::vector<std::string> terms(std::string_view text) {
  return KeywordExtractor::extractSearchTerms(text, StopWords::defaultList());
}

TEST(KeywordExtractorTest, KeepsTheSignificantWordsOfANotlet) {
  struct {
    std::string_view text;
    WordList expected;
  } const cases[] = {
      {"The quick brown fox and THE Fox", {"quick", "brown", "fox"}},
      {"Ship it #Release v2 ok", {"Ship", "Release"}},
      {"don't", {"dont"}},
      {"snake_case to-do co-operate", {"snakecase", "operate"}},
      {"Café CAFE\u0301 cafe", {"Café", "cafe"}},
      {"ΟΔΟΣ οδος", {"ΟΔΟΣ"}},
      {"2024 ٣٤٥ Ⅷ", {"2024", "٣٤٥"}},
      {"👨\u200D👩\u200D👧 ❤\uFE0F !!! ---", {}},
      {"हिन्दी भाषा", {}},
      {"한국어 하\u11AB국어", {"한국어"}},
      {"a#b#work", {"work"}},
      {"", {}},
  };
  for (const auto& [text, expected] : cases)
    EXPECT_EQ(keywords(text), expected) << text;
}

TEST(KeywordExtractorTest, KeepsEveryTermOfASearch) {
  EXPECT_THAT(terms("The Quick fox #Work"), ElementsAre("quick", "fox", "work"));
  EXPECT_THAT(terms("the and of"), ElementsAre());
  EXPECT_THAT(terms("go GO go"), ElementsAre("go"));
  EXPECT_THAT(terms("x CAFE\u0301 café"), ElementsAre("x", "café"));
}

TEST(KeywordExtractorTest, CutsLanguagesWithoutSpacesIntoWords) {
  EXPECT_THAT(terms("日本語を勉強する"), testing::Contains("勉強"));
  EXPECT_THAT(terms("ภาษาไทย"), ElementsAre("ภาษา", "ไทย"));
}

// Or what was stored in one language would not be found in another.
TEST(KeywordExtractorTest, CutsWordsAlikeInEveryLanguage) {
  const icu::Locale before = icu::Locale::getDefault();
  UErrorCode status = U_ZERO_ERROR;
  for (const char* language : {"en_GB", "en_US_POSIX", "fi_FI"}) {
    icu::Locale::setDefault(icu::Locale(language), status);
    std::thread([&] {
      EXPECT_THAT(terms("README.md EU:n"), ElementsAre("readmemd", "eu", "n")) << language;
    }).join();
  }
  icu::Locale::setDefault(before, status);
}

class StopWordsTest : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directory(m_folder); }
  void TearDown() override { std::filesystem::remove_all(m_folder); }

  std::filesystem::path file(std::string_view text) const {
    std::ofstream(m_folder / "stopwords.txt", std::ios::binary) << text;
    return m_folder / "stopwords.txt";
  }

  const std::filesystem::path m_folder =
      std::filesystem::path(testing::TempDir()) / ("notlet-stopwords-" + Uuid::random().text());
};

TEST_F(StopWordsTest, AFileReplacesTheDefaultList) {
  const StopWords words = StopWords::load(file("Foo\r\nCAFE\u0301\u2028 padded\n\nlast"));

  for (const char* word : {"foo", "café", "last", " padded"})
    EXPECT_TRUE(words.contains(word)) << word;
  for (const char* word : {"the", "padded", "foo\r"})
    EXPECT_FALSE(words.contains(word)) << word;
  EXPECT_EQ(KeywordExtractor::extractKeywords("the foo", words), WordList{"the"});
}

TEST_F(StopWordsTest, WithoutAReadableFileTheDefaultListHolds) {
  for (const auto& path : {m_folder / "none.txt", m_folder, file("foo\n\xFF\n")}) {
    const StopWords words = StopWords::load(path);
    EXPECT_EQ(words.size(), 31U) << path;
    EXPECT_TRUE(words.contains("the"));
    EXPECT_FALSE(words.contains("foo"));
  }
}

TEST_F(StopWordsTest, TheProgramsOwnListLeavesSearchableWordsAlone) {
  EXPECT_GT(StopWords::set().size(), StopWords::defaultList().size()) << "stopwords.txt was not found";
  for (const char* word : {"the", "although", "yourself"})
    EXPECT_TRUE(StopWords::set().contains(word)) << word;
  // As a stop word "dont" would make "don't forget" unfindable: its text does not hold these letters in a
  // row.
  for (const char* word : {"dont", "cant", "go", "work", "may", "us", "new"})
    EXPECT_FALSE(StopWords::set().contains(word)) << word;
}

} // namespace

} // namespace notlet
