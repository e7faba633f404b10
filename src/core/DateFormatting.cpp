#include "core/DateFormatting.h"

#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <cstdlib>
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

std::string printed(const icu::DateFormat* format, Timestamp time) {
  std::string text;
  if (format == nullptr)
    return text;
  icu::UnicodeString wide;
  format->format(
      static_cast<UDate>(std::chrono::floor<std::chrono::milliseconds>(time).time_since_epoch().count()),
      wide);
  wide.toUTF8String(text);
  return text;
}

} // namespace

struct DateFormatting::Formatters {
  std::unique_ptr<icu::DateFormat> day;
  std::unique_ptr<icu::DateFormat> timeOfDay;

  explicit Formatters(const icu::Locale& locale) : day(dayFormat(locale)), timeOfDay(timeFormat(locale)) {}
};

DateFormatting::DateFormatting() : m_formatters(std::make_unique<Formatters>(localeForDates())) {
}

DateFormatting::DateFormatting(const std::string& locale, const std::string& timeZone)
    : m_formatters(std::make_unique<Formatters>(localeNamed(locale))) {
  for (icu::DateFormat* format : {m_formatters->day.get(), m_formatters->timeOfDay.get()}) {
    if (format != nullptr)
      format->adoptTimeZone(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(timeZone)));
  }
}

DateFormatting::DateFormatting(DateFormatting&&) noexcept = default;
DateFormatting& DateFormatting::operator=(DateFormatting&&) noexcept = default;
DateFormatting::~DateFormatting() = default;

const DateFormatting& DateFormatting::shared() {
  static const DateFormatting formatting;
  return formatting;
}

std::string DateFormatting::day(Timestamp time) const {
  return printed(m_formatters->day.get(), time);
}

std::string DateFormatting::timeOfDay(Timestamp time) const {
  // English puts a narrow no-break space before "PM", for which many fonts have no glyph.
  constexpr std::string_view narrowSpace = "\u202F";
  std::string text = printed(m_formatters->timeOfDay.get(), time);
  for (std::size_t at = text.find(narrowSpace); at != std::string::npos; at = text.find(narrowSpace, at))
    text.replace(at, narrowSpace.size(), " ");
  return text;
}

} // namespace notlet
