#include "core/DateFormatting.h"

#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <cstdlib>
#include <ctime>
#include <string_view>

namespace notlet {

namespace {

/// The locale of a name as the environment gives it, "de_DE.UTF-8". ICU has no locale "C" and would take its
/// default one.
icu::Locale localeNamed(std::string_view name) {
  const std::string_view language = name.substr(0, name.find('.'));
  if (language == "C" || language == "POSIX")
    return {"en_US_POSIX"};
  return icu::Locale::createCanonical(std::string(name).c_str());
}

/// The locale that the environment names for dates, which may differ from the one for messages.
icu::Locale localeForDates() {
  for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
    const char* name = std::getenv(variable);
    if (name != nullptr && *name != '\0')
      return localeNamed(name);
  }
  return icu::Locale::getDefault();
}

std::unique_ptr<icu::DateFormat> dayFormat(const icu::Locale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  auto format = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString(u"MMM d, yyyy"), locale, status);
  if (U_FAILURE(status))
    return nullptr;
  return format;
}

std::unique_ptr<icu::DateFormat> timeFormat(const icu::Locale& locale) {
  return std::unique_ptr<icu::DateFormat>(
      icu::DateFormat::createTimeInstance(icu::DateFormat::kShort, locale));
}

std::string printed(const icu::DateFormat* format, Timestamp time, std::chrono::seconds offset) {
  std::string text;
  if (format == nullptr)
    return text;
  icu::UnicodeString wide;
  const auto moved = std::chrono::floor<std::chrono::milliseconds>(time) + offset;
  format->format(static_cast<UDate>(moved.time_since_epoch().count()), wide);
  wide.toUTF8String(text);
  return text;
}

/// How far the clocks of the user's time zone are ahead of UTC. The C library knows every form of TZ, of
/// which ICU knows the names only.
std::chrono::seconds userOffset(Timestamp time) {
  const std::time_t seconds = std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
  std::tm local{};
  return std::chrono::seconds(::localtime_r(&seconds, &local) != nullptr ? local.tm_gmtoff : 0);
}

} // namespace

struct DateFormatting::Formatters {
  std::unique_ptr<icu::DateFormat> day;
  std::unique_ptr<icu::DateFormat> timeOfDay;

  /// What a time is moved by before it is printed.
  std::chrono::seconds (*offset)(Timestamp);

  Formatters(const icu::Locale& locale, const std::string& timeZone,
             std::chrono::seconds (*offsetOf)(Timestamp))
      : day(dayFormat(locale)), timeOfDay(timeFormat(locale)), offset(offsetOf) {
    for (icu::DateFormat* format : {day.get(), timeOfDay.get()}) {
      if (format != nullptr)
        format->adoptTimeZone(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(timeZone)));
    }
  }
};

DateFormatting::DateFormatting()
    : m_formatters(std::make_unique<Formatters>(localeForDates(), "GMT", userOffset)) {
  ::tzset();
}

DateFormatting::DateFormatting(const std::string& locale, const std::string& timeZone)
    : m_formatters(std::make_unique<Formatters>(localeNamed(locale), timeZone,
                                                [](Timestamp) { return std::chrono::seconds(0); })) {
}

DateFormatting::DateFormatting(DateFormatting&&) noexcept = default;
DateFormatting& DateFormatting::operator=(DateFormatting&&) noexcept = default;
DateFormatting::~DateFormatting() = default;

const DateFormatting& DateFormatting::shared() {
  static const DateFormatting formatting;
  return formatting;
}

std::string DateFormatting::day(Timestamp time) const {
  return printed(m_formatters->day.get(), time, m_formatters->offset(time));
}

std::string DateFormatting::timeOfDay(Timestamp time) const {
  // English puts a narrow no-break space before "PM", for which many fonts have no glyph.
  constexpr std::string_view narrowSpace = "\u202F";
  std::string text = printed(m_formatters->timeOfDay.get(), time, m_formatters->offset(time));
  for (std::size_t at = text.find(narrowSpace); at != std::string::npos; at = text.find(narrowSpace, at))
    text.replace(at, narrowSpace.size(), " ");
  return text;
}

} // namespace notlet
