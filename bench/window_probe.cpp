// usage: window_probe TITLE PROGRAM [ARGUMENT...]
//
// Starts a program and prints, in milliseconds, how long it takes until its window is painted and active, and
// how long a key press then takes to change what the window shows. Ends the program afterwards. What a person
// sees is measured from outside, through the X server, so the program needs no switch for it.

#include <sys/wait.h>
#include <unistd.h>
#include <xcb/damage.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

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

double milliseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

[[noreturn]] void fail(const char* message) {
  std::fprintf(stderr, "window_probe: %s\n", message);
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

  void pressKey(xcb_keycode_t key) {
    for (const auto kind : {std::uint8_t{XCB_KEY_PRESS}, std::uint8_t{XCB_KEY_RELEASE}})
      xcb_test_fake_input(m_connection, kind, key, XCB_CURRENT_TIME, m_root, 0, 0, 0);
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

/// Waits until nothing has been painted for a while.
void awaitQuiet(Screen& screen) {
  const auto deadline = Clock::now() + patience;
  auto quietAt = Clock::now() + quietTime;
  while (Clock::now() < deadline) {
    const Event event = screen.next(quietAt);
    if (!event)
      return;
    if (screen.isDamage(event))
      quietAt = Clock::now() + quietTime;
  }
}

Clock::duration keyToPaint(Screen& screen) {
  constexpr xcb_keycode_t letterX = 53;
  const auto start = Clock::now();
  screen.pressKey(letterX);
  while (const Event event = screen.next(start + patience)) {
    if (screen.isDamage(event))
      return Clock::now() - start;
  }
  fail("the key changed nothing");
}

pid_t start(char** command) {
  const pid_t child = fork();
  if (child == 0) {
    execvp(command[0], command);
    _exit(127);
  }
  return child;
}

} // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fputs("usage: window_probe TITLE PROGRAM [ARGUMENT...]\n", stderr);
    return 2;
  }
  Screen screen;
  const auto before = Clock::now();
  const pid_t child = start(argv + 2);
  const auto ready = awaitReady(screen, argv[1]);
  awaitQuiet(screen);
  const auto key = keyToPaint(screen);
  kill(child, SIGTERM);
  waitpid(child, nullptr, 0);
  std::printf("%.2f %.2f\n", milliseconds(ready - before), milliseconds(key));
  return 0;
}
