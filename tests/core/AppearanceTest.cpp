#include <gmock/gmock.h>

#include <cstdlib>

#include "core/DateFormatting.h"
#include "core/HashtagColor.h"

namespace notlet {

namespace {

/// Sets a variable of the environment for as long as it lives.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const char* value) : m_name(name) {
    if (const char* before = std::getenv(name))
      m_before = before;
    setenv(name, value, 1);
  }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;
  ~ScopedVariable() { m_before ? setenv(m_name, m_before->c_str(), 1) : unsetenv(m_name); }

 private:
  const char* m_name;
  std::optional<std::string> m_before;
};

constexpr Rgb black{0, 0, 0};
constexpr Rgb white{255, 255, 255};

TEST(RgbTest, ColourCodesAreReadLeniently) {
  struct {
    std::string_view code, expected;
  } const cases[] = {
      {"#1E1E2E", "1E1E2E"},
      {" 1e1e2e ", "1E1E2E"},
      {"#1E1E2E;", "1E1E2E"},
      {"#FFF", "FFFFFF"},
      {"F80", "FF8800"},
      {"", "000000"},
      {"#", "000000"},
      {"GG0000", "000000"},
      {"12 345", "000000"},
      {"é12345", "000000"},
      {"00000000FF0000", "FF0000"},
      {"11223344", "223344"},
      {"ABCD", "00ABCD"},
      {"0xFFFFFF", "000000"},
      {"12345678901234567", "000000"},
      {"FFFFFFFFFFFFFFFF", "FFFFFF"},
      {"-FF", "0000FF"},
      {"１２３", "000000"},
      {"\xFF"
       "123456\xC2",
       "123456"},
  };
  for (const auto& [code, expected] : cases)
    EXPECT_EQ(Rgb::fromHex(code).hexRGB(), expected) << code;
  EXPECT_EQ(Rgb::fromComponents(0.5, -1, 2).hexRGB(), "8000FF");
}

TEST(HashtagColorTest, TheHashIsTheSameForeverAndIgnoresLetterCase) {
  EXPECT_EQ(HashtagColor::stableHash(""), 0xcbf29ce484222325U);
  EXPECT_EQ(HashtagColor::stableHash("a"), 0xaf63dc4c8601ec8cU);
  EXPECT_EQ(HashtagColor::stableHash("ÉTÉ-Work"), HashtagColor::stableHash("été-work"));
  EXPECT_EQ(HashtagColor::color("a", white, black), white) << "even hashes take the accent";
  EXPECT_EQ(HashtagColor::color("", white, black), black) << "odd hashes take the alternate accent";
}

TEST(HashtagColorTest, TextOnAColourIsBlackOnlyOnLightOnes) {
  EXPECT_DOUBLE_EQ(HashtagColor::relativeLuminance(white), 1);
  EXPECT_DOUBLE_EQ(HashtagColor::relativeLuminance(black), 0);
  EXPECT_NEAR(HashtagColor::relativeLuminance(0.5, 0.5, 0.5), 0.214, 0.0005);
  EXPECT_NEAR(HashtagColor::relativeLuminance(Rgb{0, 255, 0}), 0.7152, 1e-9);
  EXPECT_EQ(HashtagColor::contrastingText(white), black);
  EXPECT_EQ(HashtagColor::contrastingText({128, 128, 128}), white);
  EXPECT_EQ(HashtagColor::contrastingText({178, 178, 178}), white) << "luminance 0.445";
  EXPECT_EQ(HashtagColor::contrastingText({179, 179, 179}), black) << "luminance 0.451";
}

TEST(DateFormattingTest, PrintsDayAndTimeAsTheLocaleWritesThem) {
  const Timestamp evening = std::chrono::sys_days(std::chrono::year(2026) / 11 / 16) +
                            std::chrono::hours(19) + std::chrono::minutes(16) +
                            std::chrono::microseconds(59'999'999);
  struct {
    const char *locale, *zone, *day, *time;
  } const cases[] = {
      {"en_US.UTF-8", "Europe/Berlin", "Nov 16, 2026", "8:16 PM"},
      {"de_DE", "Europe/Berlin", "Nov. 16, 2026", "20:16"},
      {"en_US", "Asia/Tokyo", "Nov 17, 2026", "4:16 AM"},
      {"ja_JP", "UTC", "11月 16, 2026", "19:16"},
      {"C.UTF-8", "UTC", "Nov 16, 2026", "7:16 PM"},
  };
  for (const auto& [locale, zone, day, time] : cases) {
    const DateFormatting formatting(locale, zone);
    EXPECT_EQ(formatting.day(evening), day) << locale;
    EXPECT_EQ(formatting.timeOfDay(evening), time) << locale;
  }
}

TEST(DateFormattingTest, TimesBeforeTheEpochAreNotRoundedIntoTheNextMinute) {
  const DateFormatting formatting("de_DE", "UTC");
  EXPECT_EQ(formatting.timeOfDay(Timestamp(std::chrono::microseconds(-1))), "23:59");
  EXPECT_EQ(formatting.day(Timestamp(std::chrono::microseconds(-1))), "Dez. 31, 1969");
}

TEST(DateFormattingTest, TheUsersLanguageAndTimeZoneAreFollowed) {
  const ScopedVariable all("LC_ALL", "");
  const ScopedVariable language("LC_TIME", "fr_FR.UTF-8");
  const Timestamp winter = std::chrono::sys_days(std::chrono::year(2300) / 1 / 2) + std::chrono::hours(3);
  const Timestamp summer = winter + std::chrono::days(180);
  struct {
    const char *zone, *day, *winterTime, *summerTime;
  } const cases[] = {
      {"Europe/Berlin", "janv. 2, 2300", "04:00", "05:00"},
      {"EST5EDT,M3.2.0,M11.1.0", "janv. 1, 2300", "22:00", "23:00"},
      {"<+0545>-5:45", "janv. 2, 2300", "08:45", "08:45"},
  };
  for (const auto& [name, day, winterTime, summerTime] : cases) {
    const ScopedVariable zone("TZ", name);
    const DateFormatting formatting;
    EXPECT_EQ(formatting.day(winter), day) << name;
    EXPECT_EQ(formatting.timeOfDay(winter), winterTime) << name;
    EXPECT_EQ(formatting.timeOfDay(summer), summerTime) << name;
  }
}

} // namespace

} // namespace notlet
