#pragma once

#include <memory>
#include <string>

#include "core/Timestamp.h"

namespace notlet {

/// Prints when a notlet was made, in a locale's language, calendar and time zone, as UTF-8. Making one takes
/// milliseconds, printing microseconds: make it once.
class DateFormatting {
 public:
  /// For the user's language and time zone: LC_ALL, LC_TIME or LANG, and the system's zone or TZ.
  DateFormatting();
  /// For example "en_US" and "Europe/Berlin".
  DateFormatting(const std::string& locale, const std::string& timeZone);
  DateFormatting(DateFormatting&&) noexcept;
  DateFormatting& operator=(DateFormatting&&) noexcept;
  ~DateFormatting();

  /// The one for the user, made on first use.
  [[nodiscard]] static const DateFormatting& shared();

  /// Abbreviated month, day and year: "Nov 16, 2026".
  [[nodiscard]] std::string day(Timestamp time) const;
  /// The time of day in the locale's short style: "8:16 PM".
  [[nodiscard]] std::string timeOfDay(Timestamp time) const;

 private:
  struct Formatters;
  std::unique_ptr<Formatters> m_formatters;
};

} // namespace notlet
