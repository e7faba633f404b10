// usage: window_probe TITLE STEPS PROGRAM [ARGUMENT...]
//
// Starts a program and prints, in milliseconds, how long it takes until its window is painted and active.
// Then it takes the steps, separated by commas, one after the other and each when the window has come to
// rest:
//
//   s, Control+s, slash, ...  a key, by its name and with the modifiers before it, pressed and released
//   =s, =Control+s, ...       the same, and two numbers more: until the first change of the picture and until
//                             the last one
//   @s, ...                   the same, counting only changes that reach the lower half of the window
//   Control+s>TITLE, ...      the same, and one number more: until the window with this title is painted and
//   active wheel, =wheel, ...        one notch of the wheel over the middle of the window click:X:Y a click
//   into the active window; what is negative counts from its far edges wait                      two seconds,
//   for work that shows nothing
//
// Ends the program afterwards. What a person sees is measured from outside, through the X server, so the
// program needs no switch for it.

#include <sys/wait.h>
#include <unistd.h>

#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <functional>
#include <optional>
#include <set>
#include <thread>
#include <vector>

#include "WatchedScreen.h"

namespace {

constexpr auto patience = 30s;
constexpr auto quietTime = 150ms;

/// The program under observation, once it is started.
pid_t child = -1;

void endChild() {
  if (child > 0) {
    kill(child, SIGTERM);
    waitpid(child, nullptr, 0);
  }
}

[[noreturn]] void fail(const char* message) {
  std::fprintf(stderr, "window_probe: %s\n", message);
  endChild();
  std::exit(1);
}

/// When the window with the title was both painted and active.
Clock::time_point awaitReady(WatchedScreen& screen, std::string_view title) {
  const auto deadline = Clock::now() + patience;
  std::set<xcb_window_t> painted;
  while (const Event event = screen.next(deadline)) {
    if (screen.isDamage(event))
      painted.insert(screen.damaged(event));
    const xcb_window_t active = screen.activeWindow();
    if (painted.contains(active) && screen.nameOf(active) == title)
      return Clock::now();
  }
  fail("the window did not come");
}

/// When a picture first changed, and when it last did before it came to rest; nothing when it did not change.
struct Changes {
  std::optional<Clock::time_point> first;
  Clock::time_point last;
};

/// Waits until nothing has been painted for a while.
Changes awaitQuiet(WatchedScreen& screen, bool onlyLowerHalf = false) {
  const auto deadline = Clock::now() + patience;
  auto quietAt = Clock::now() + quietTime;
  Changes changes;
  while (Clock::now() < deadline) {
    const Event event = screen.next(quietAt);
    if (!event)
      break;
    if (!screen.isDamage(event) || (onlyLowerHalf && !screen.isInLowerHalf(event)))
      continue;
    changes.last = Clock::now();
    if (!changes.first)
      changes.first = changes.last;
    quietAt = changes.last + quietTime;
  }
  return changes;
}

/// A key with the keys to be held meanwhile, such as "Control+s".
class KeyStroke {
 public:
  KeyStroke(WatchedScreen& screen, std::string_view text) {
    for (std::size_t begin = 0; begin <= text.size();) {
      const std::size_t end = std::min(text.find('+', begin), text.size());
      m_keys.push_back(keycode(screen, std::string(text.substr(begin, end - begin))));
      begin = end + 1;
    }
  }
  void press(WatchedScreen& screen) const {
    for (const xcb_keycode_t key : m_keys)
      screen.fake(XCB_KEY_PRESS, key);
    for (const xcb_keycode_t key : m_keys)
      screen.fake(XCB_KEY_RELEASE, key);
    screen.flush();
  }

 private:
  static xcb_keycode_t keycode(WatchedScreen& screen, const std::string& name) {
    const std::string symbol = name == "Control" ? "Control_L" : name;
    const xcb_keycode_t code = screen.keycodeOf(xkb_keysym_from_name(symbol.c_str(), XKB_KEYSYM_NO_FLAGS));
    if (code == XCB_NO_SYMBOL)
      fail("there is no such key");
    return code;
  }

  std::vector<xcb_keycode_t> m_keys;
};

void pressButton(WatchedScreen& screen, std::uint8_t button) {
  screen.fake(XCB_BUTTON_PRESS, button);
  screen.fake(XCB_BUTTON_RELEASE, button);
  screen.flush();
}

/// A step as the usage tells it.
class Step {
 public:
  explicit Step(std::string_view text) {
    m_onlyLowerHalf = text.starts_with('@');
    m_measuresChanges = m_onlyLowerHalf || text.starts_with('=');
    text.remove_prefix(m_measuresChanges ? 1 : 0);
    const std::size_t arrow = text.find('>');
    if (arrow != std::string_view::npos)
      m_awaitedTitle = text.substr(arrow + 1);
    m_what = text.substr(0, arrow);
  }

  void take(WatchedScreen& screen) const {
    if (m_what == "wait") {
      std::this_thread::sleep_for(2s);
      return;
    }
    const auto act = prepared(screen);
    const auto begin = Clock::now();
    act();
    if (m_awaitedTitle)
      std::printf(" %.2f", milliseconds(awaitReady(screen, *m_awaitedTitle) - begin));
    const Changes changes = awaitQuiet(screen, m_onlyLowerHalf);
    if (!m_measuresChanges)
      return;
    if (!changes.first)
      fail("the step changed nothing");
    std::printf(" %.2f %.2f", milliseconds(*changes.first - begin), milliseconds(changes.last - begin));
  }

 private:
  /// What is to be done, with the pointer where it has to be.
  [[nodiscard]] std::function<void()> prepared(WatchedScreen& screen) const {
    constexpr std::uint8_t left = 1;
    constexpr std::uint8_t wheelDown = 5;
    int x = 200;
    int y = 300;
    const bool isClick = std::sscanf(m_what.c_str(), "click:%d:%d", &x, &y) == 2;
    if (!isClick && m_what != "wheel")
      return [&screen, stroke = KeyStroke(screen, m_what)] { stroke.press(screen); };
    screen.movePointerTo(screen.activeWindow(), x, y);
    awaitQuiet(screen); // What is under the pointer lights up.
    return [&screen, button = isClick ? left : wheelDown] { pressButton(screen, button); };
  }

  std::string m_what;
  std::optional<std::string> m_awaitedTitle;
  bool m_onlyLowerHalf = false;
  bool m_measuresChanges = false;
};

void start(char** command) {
  child = fork();
  if (child == 0) {
    execvp(command[0], command);
    _exit(127);
  }
}

} // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fputs("usage: window_probe TITLE STEPS PROGRAM [ARGUMENT...]\n", stderr);
    return 2;
  }
  WatchedScreen screen;
  const auto before = Clock::now();
  start(argv + 3);
  const auto ready = awaitReady(screen, argv[1]);
  awaitQuiet(screen);
  std::printf("%.2f", milliseconds(ready - before));
  std::string_view steps = argv[2];
  while (!steps.empty()) {
    const std::size_t end = std::min(steps.find(','), steps.size());
    Step(steps.substr(0, end)).take(screen);
    steps.remove_prefix(std::min(end + 1, steps.size()));
  }
  std::putchar('\n');
  endChild();
  return 0;
}
