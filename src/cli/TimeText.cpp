#include "cli/TimeText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

namespace notlet {
namespace {

namespace chrono = std::chrono;
using chrono::sys_days;
using chrono::year;

constexpr Timestamp earliest = sys_days(year(0) / 1 / 1);
constexpr Timestamp latest = sys_days(year(10000) / 1 / 1) - chrono::microseconds(1);

/// Takes a text apart from its beginning. After the first mismatch nothing matches any more.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : m_rest(text) {}

  int digits(std::size_t count) {
    int value = 0;
    for (std::size_t index = 0; index < count; ++index)
      value = value * 10 + digit();
    return value;
  }
  /// The decimals as microseconds; at least one is needed.
  int decimals() {
    int value = 0;
    int scale = 100'000;
    do {
      value += digit() * scale;
      scale /= 10;
    } while (m_matches && !m_rest.empty() && isDigit(m_rest.front()));
    return value;
  }
  /// The next character, when it is one of these; 0 otherwise.
  char oneOf(std::string_view characters) {
    if (!m_matches || m_rest.empty() || !characters.contains(m_rest.front()))
      return 0;
    const char found = m_rest.front();
    m_rest.remove_prefix(1);
    return found;
  }
  void expect(std::string_view characters) { m_matches = oneOf(characters) != 0; }
  [[nodiscard]] bool isAtEnd() const { return m_matches && m_rest.empty(); }

 private:
  static bool isDigit(char character) { return character >= '0' && character <= '9'; }
  int digit() {
    if (!m_matches || m_rest.empty() || !isDigit(m_rest.front())) {
      m_matches = false;
      return 0;
    }
    const int value = m_rest.front() - '0';
    m_rest.remove_prefix(1);
    return value;
  }

  std::string_view m_rest;
  bool m_matches = true;
};

std::optional<chrono::minutes> scanOffset(Scanner& scanner) {
  const char sign = scanner.oneOf("Zz+-");
  if (sign == 0)
    return std::nullopt;
  if (sign == 'Z' || sign == 'z')
    return chrono::minutes(0);
  const chrono::hours hours(scanner.digits(2));
  scanner.expect(":");
  const chrono::minutes minutes(scanner.digits(2));
  if (hours > chrono::hours(23) || minutes > chrono::minutes(59))
    return std::nullopt;
  return sign == '-' ? -(hours + minutes) : hours + minutes;
}

} // namespace

std::string utcText(Timestamp time) {
  time = std::clamp(time, earliest, latest);
  const auto day = chrono::floor<chrono::days>(time);
  const chrono::year_month_day date(day);
  const chrono::hh_mm_ss clock(time - day);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%06dZ", int(date.year()),
                unsigned(date.month()), unsigned(date.day()), int(clock.hours().count()),
                int(clock.minutes().count()), int(clock.seconds().count()), int(clock.subseconds().count()));
  return text.data();
}

std::optional<Timestamp> parseTime(std::string_view text) {
  Scanner scanner(text);
  const year years(scanner.digits(4));
  scanner.expect("-");
  const chrono::month month(static_cast<unsigned>(scanner.digits(2)));
  scanner.expect("-");
  const chrono::day day(static_cast<unsigned>(scanner.digits(2)));
  scanner.expect("Tt ");
  const chrono::hours hours(scanner.digits(2));
  scanner.expect(":");
  const chrono::minutes minutes(scanner.digits(2));
  scanner.expect(":");
  const chrono::seconds seconds(scanner.digits(2));
  const chrono::microseconds decimals(scanner.oneOf(".") != 0 ? scanner.decimals() : 0);
  const std::optional<chrono::minutes> offset = scanOffset(scanner);

  const chrono::year_month_day date = years / month / day;
  // A leap second is the second after it, as the system's clock has it.
  const bool isTime =
      hours <= chrono::hours(23) && minutes <= chrono::minutes(59) && seconds <= chrono::seconds(60);
  if (!scanner.isAtEnd() || !offset || !date.ok() || !isTime)
    return std::nullopt;
  return Timestamp(sys_days(date)) + hours + minutes + seconds + decimals - *offset;
}

std::string localText(Timestamp time) {
  // The system clock's own type ends in the year 2262.
  const std::time_t seconds = chrono::floor<chrono::seconds>(time).time_since_epoch().count();
  std::tm local{};
  if (::localtime_r(&seconds, &local) == nullptr)
    return utcText(time);
  const int years = local.tm_year + 1900;
  if (years < 0 || years > 9999)
    return utcText(time);
  // Long lists spend much of their time in what formats any format.
  std::string text = "0000-00-00 00:00";
  const auto put = [&](std::size_t end, int value) {
    for (; value > 0; value /= 10)
      text[--end] = static_cast<char>('0' + value % 10);
  };
  put(4, years);
  put(7, local.tm_mon + 1);
  put(10, local.tm_mday);
  put(13, local.tm_hour);
  put(16, local.tm_min);
  return text;
}

} // namespace notlet
