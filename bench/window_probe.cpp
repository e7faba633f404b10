// usage: window_probe TITLE STEPS PROGRAM [ARGUMENT...]
//
// Starts a program and prints, in milliseconds, how long it takes until its window is painted and active.
// Then it takes the steps, separated by commas, one after the other and each when the window has come to
// rest:
//
//   s, Control+s, slash, ...  a key, by its name and with the modifiers before it, pressed and released
//   =s, =Control+s, ...       the same, and two numbers more: until the first change of the picture and until
//                             the last one
//   =wheel                    the same for one notch of the wheel over the middle of the window
//   @s, @wheel, ...           the same, counting only changes that reach the lower half of the window
//   wait                      two seconds, for work that shows nothing
//
// Ends the program afterwards. What a person sees is measured from outside, through the X server, so the
// program needs no switch for it.

#include <sys/wait.h>
#include <unistd.h>
#include <xcb/damage.h>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;

constexpr auto patience = 30s;
constexpr auto quietTime = 150ms;

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};
template<typename Reply>
using ReplyPointer = std::unique_ptr<Reply, FreeReply>;
using Event = ReplyPointer<xcb_generic_event_t>;

struct FreeSymbols {
  void operator()(xcb_key_symbols_t* symbols) const { xcb_key_symbols_free(symbols); }
};
using KeySymbols = std::unique_ptr<xcb_key_symbols_t, FreeSymbols>;

double milliseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

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

/// The X server as seen by somebody who watches windows appear, become active and change.
class Screen {
 public:
  Screen() : m_connection(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(m_connection))
      fail("no display");
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &mask);
    free(xcb_damage_query_version_reply(m_connection, xcb_damage_query_version(m_connection, 1, 1), nullptr));
    m_damageEvent = xcb_get_extension_data(m_connection, &xcb_damage_id)->first_event;
    m_activeAtom = atom("_NET_ACTIVE_WINDOW");
    m_nameAtom = atom("_NET_WM_NAME");
    xcb_flush(m_connection);
  }
  ~Screen() { xcb_disconnect(m_connection); }
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  /// The next event before the deadline.
  Event next(Clock::time_point deadline) {
    for (;;) {
      if (Event event{xcb_poll_for_event(m_connection)})
        return event;
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
      if (left <= 0ms)
        return nullptr;
      pollfd descriptor{xcb_get_file_descriptor(m_connection), POLLIN, 0};
      poll(&descriptor, 1, static_cast<int>(left.count()));
    }
  }

  [[nodiscard]] bool isDamage(const Event& event) const {
    return (event->response_type & 0x7f) == m_damageEvent + XCB_DAMAGE_NOTIFY;
  }
  [[nodiscard]] bool isInLowerHalf(const Event& event) const {
    const auto& damage = *reinterpret_cast<const xcb_damage_notify_event_t*>(event.get());
    return damage.area.y + damage.area.height > damage.geometry.height / 2;
  }
  [[nodiscard]] xcb_drawable_t damaged(const Event& event) const {
    return reinterpret_cast<const xcb_damage_notify_event_t*>(event.get())->drawable;
  }
  /// Watches a window that was just created: it may be painted before it is known to be the right one.
  void watch(xcb_window_t window) {
    const xcb_damage_damage_t damage = xcb_generate_id(m_connection);
    xcb_damage_create(m_connection, damage, window, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    xcb_flush(m_connection);
  }
  [[nodiscard]] xcb_window_t activeWindow() {
    const auto value = property(m_root, m_activeAtom);
    xcb_window_t window = XCB_NONE;
    if (value.size() >= sizeof window)
      std::memcpy(&window, value.data(), sizeof window);
    return window;
  }
  [[nodiscard]] std::string nameOf(xcb_window_t window) { return property(window, m_nameAtom); }

  void fake(std::uint8_t kind, std::uint8_t detail) {
    xcb_test_fake_input(m_connection, kind, detail, XCB_CURRENT_TIME, m_root, 0, 0, 0);
  }
  void flush() { xcb_flush(m_connection); }
  /// The key that types a keysym, by the keyboard's first two columns.
  xcb_keycode_t keycodeOf(xcb_keysym_t symbol) {
    KeySymbols symbols{xcb_key_symbols_alloc(m_connection)};
    const ReplyPointer<xcb_keycode_t> codes{xcb_key_symbols_get_keycode(symbols.get(), symbol)};
    return codes ? *codes : XCB_NO_SYMBOL;
  }
  void movePointerTo(xcb_window_t window) {
    const ReplyPointer<xcb_get_geometry_reply_t> geometry{
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr)};
    if (!geometry)
      return;
    xcb_warp_pointer(m_connection, XCB_NONE, window, 0, 0, 0, 0,
                     static_cast<std::int16_t>(geometry->width / 2),
                     static_cast<std::int16_t>(geometry->height / 2));
    xcb_flush(m_connection);
  }

 private:
  xcb_atom_t atom(std::string_view name) {
    const auto cookie =
        xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const ReplyPointer<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(m_connection, cookie, nullptr)};
    return reply ? reply->atom : XCB_NONE;
  }
  std::string property(xcb_window_t window, xcb_atom_t name) {
    const auto cookie = xcb_get_property(m_connection, 0, window, name, XCB_ATOM_ANY, 0, 64);
    const ReplyPointer<xcb_get_property_reply_t> reply{xcb_get_property_reply(m_connection, cookie, nullptr)};
    if (!reply)
      return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
  }

  xcb_connection_t* m_connection;
  xcb_window_t m_root = XCB_NONE;
  std::uint8_t m_damageEvent = 0;
  xcb_atom_t m_activeAtom = XCB_NONE;
  xcb_atom_t m_nameAtom = XCB_NONE;
};

/// When the window with the title was both painted and active.
Clock::time_point awaitReady(Screen& screen, std::string_view title) {
  const auto deadline = Clock::now() + patience;
  std::map<xcb_window_t, Clock::time_point> painted;
  while (const Event event = screen.next(deadline)) {
    const int kind = event->response_type & 0x7f;
    if (kind == XCB_CREATE_NOTIFY)
      screen.watch(reinterpret_cast<const xcb_create_notify_event_t*>(event.get())->window);
    else if (screen.isDamage(event))
      painted.try_emplace(screen.damaged(event), Clock::now());
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
Changes awaitQuiet(Screen& screen, bool onlyLowerHalf = false) {
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
  KeyStroke(Screen& screen, std::string_view text) {
    for (std::size_t begin = 0; begin <= text.size();) {
      const std::size_t end = std::min(text.find('+', begin), text.size());
      m_keys.push_back(keycode(screen, std::string(text.substr(begin, end - begin))));
      begin = end + 1;
    }
  }
  void press(Screen& screen) const {
    for (const xcb_keycode_t key : m_keys)
      screen.fake(XCB_KEY_PRESS, key);
    for (const xcb_keycode_t key : m_keys)
      screen.fake(XCB_KEY_RELEASE, key);
    screen.flush();
  }

 private:
  static xcb_keycode_t keycode(Screen& screen, const std::string& name) {
    const std::string symbol = name == "Control" ? "Control_L" : name;
    const xcb_keycode_t code = screen.keycodeOf(xkb_keysym_from_name(symbol.c_str(), XKB_KEYSYM_NO_FLAGS));
    if (code == XCB_NO_SYMBOL)
      fail("there is no such key");
    return code;
  }

  std::vector<xcb_keycode_t> m_keys;
};

void turnWheel(Screen& screen) {
  constexpr std::uint8_t wheelDown = 5;
  screen.fake(XCB_BUTTON_PRESS, wheelDown);
  screen.fake(XCB_BUTTON_RELEASE, wheelDown);
  screen.flush();
}

/// Takes one step; prints what it took when asked to.
void take(Screen& screen, std::string_view step) {
  const bool onlyLowerHalf = step.starts_with('@');
  const bool isMeasured = onlyLowerHalf || step.starts_with('=');
  const std::string_view what = step.substr(isMeasured ? 1 : 0);
  if (what == "wait") {
    std::this_thread::sleep_for(2s);
    return;
  }
  std::optional<KeyStroke> stroke;
  if (what == "wheel") {
    screen.movePointerTo(screen.activeWindow());
    awaitQuiet(screen); // What is under the pointer lights up.
  } else {
    stroke.emplace(screen, what);
  }
  const auto begin = Clock::now();
  if (stroke)
    stroke->press(screen);
  else
    turnWheel(screen);
  const Changes changes = awaitQuiet(screen, onlyLowerHalf);
  if (!isMeasured)
    return;
  if (!changes.first)
    fail("the step changed nothing");
  std::printf(" %.2f %.2f", milliseconds(*changes.first - begin), milliseconds(changes.last - begin));
}

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
  Screen screen;
  const auto before = Clock::now();
  start(argv + 3);
  const auto ready = awaitReady(screen, argv[1]);
  awaitQuiet(screen);
  std::printf("%.2f", milliseconds(ready - before));
  std::string_view steps = argv[2];
  while (!steps.empty()) {
    const std::size_t end = std::min(steps.find(','), steps.size());
    take(screen, steps.substr(0, end));
    steps.remove_prefix(std::min(end + 1, steps.size()));
  }
  std::putchar('\n');
  endChild();
  return 0;
}
