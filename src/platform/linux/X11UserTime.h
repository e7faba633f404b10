#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace notlet {

/// Carries the X server's time of what the user did from whoever saw it to whoever shows a window because of
/// it: with that time the window manager lets the window have the keyboard.
class X11UserTime {
 public:
  /// In milliseconds, as X events carry it.
  void note(std::uint32_t time);
  /// The time noted last, once: the next window answers something else that the user did. Nothing when it was
  /// noted so long ago that nobody can be waiting for the answer.
  [[nodiscard]] std::optional<std::uint32_t> take();

 private:
  std::optional<std::uint32_t> m_time;
  std::chrono::steady_clock::time_point m_notedAt;
};

/// The time in what a desktop hands to the programs it starts (`DESKTOP_STARTUP_ID`): "anything_TIME12345".
[[nodiscard]] std::optional<std::uint32_t> timeOfActivationToken(std::string_view token);

} // namespace notlet
