#include "platform/linux/X11UserTime.h"

#include <charconv>
#include <system_error>
#include <utility>

namespace notlet {

namespace {

constexpr std::chrono::seconds longestAnswer{5};

} // namespace

void X11UserTime::note(std::uint32_t time) {
  m_time = time;
  m_notedAt = std::chrono::steady_clock::now();
}

std::optional<std::uint32_t> X11UserTime::take() {
  const auto time = std::exchange(m_time, std::nullopt);
  return std::chrono::steady_clock::now() - m_notedAt <= longestAnswer ? time : std::nullopt;
}

std::optional<std::uint32_t> timeOfActivationToken(std::string_view token) {
  constexpr std::string_view mark = "_TIME";
  const std::size_t place = token.rfind(mark);
  if (place == std::string_view::npos)
    return std::nullopt;
  const std::string_view digits = token.substr(place + mark.size());
  std::uint32_t time = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), time);
  // Zero stands for "now" in X, which window managers take for "the user did nothing".
  if (error != std::errc() || end != digits.data() + digits.size() || time == 0)
    return std::nullopt;
  return time;
}

} // namespace notlet
