#include "platform/linux/X11HotKey.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include "platform/linux/X11Keyboard.h"
#include "platform/linux/X11UserTime.h"
#include "support/TestDisplay.h"
#include "support/X11Client.h"
#include "support/X11Marker.h"

namespace notlet {

namespace {

using Failure = GlobalHotKey::Failure;

// Keys by their place on a keyboard with American layout.
constexpr xcb_keycode_t control = 37;
constexpr xcb_keycode_t capsLock = 66;
constexpr xcb_keycode_t numLock = 77;
constexpr xcb_keycode_t scrollLock = 78;
constexpr xcb_keycode_t keyH = 43;
constexpr xcb_keycode_t keyJ = 44;
constexpr xcb_keycode_t keyC = 54;
constexpr xcb_keycode_t super = 133;
constexpr xcb_keycode_t hyper = 207;
constexpr std::uint16_t controlAndSuper = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4;
constexpr int mod3 = 5;
constexpr int mod4 = 6;

/// Counts the presses of a key that the server tells of, repeats too.
class KeyPressCount final : private QAbstractNativeEventFilter {
 public:
  explicit KeyPressCount(xcb_keycode_t key) : m_key(key) { qApp->installNativeEventFilter(this); }
  [[nodiscard]] int count() const { return m_count; }

 private:
  bool nativeEventFilter(const QByteArray& /*type*/, void* message, qintptr* /*result*/) override {
    const auto& event = *static_cast<const xcb_key_press_event_t*>(message);
    m_count += event.response_type == XCB_KEY_PRESS && event.detail == m_key ? 1 : 0;
    return false;
  }

  xcb_keycode_t m_key;
  int m_count = 0;
};

class X11HotKeyTest : public testing::Test {
 protected:
  void SetUp() override { setLayout({QStringLiteral("us")}); }

  void setLayout(QStringList arguments) {
    arguments.prepend(QStringLiteral("-layout"));
    ASSERT_EQ(
        QProcess::execute(QStringLiteral("setxkbmap"), QStringList(QStringLiteral("-option")) + arguments),
        0);
  }

  /// Milliseconds until a held key repeats, and repeats per second; the usual ones when left out.
  static void setRepetition(const QStringList& rate) {
    ASSERT_EQ(QProcess::execute(QStringLiteral("xset"),
                                QStringList{QStringLiteral("r"), QStringLiteral("rate")} + rate),
              0);
  }

  static void repeatAsPressesAlone(bool isOn) {
    constexpr std::uint32_t flag = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    const auto connection = X11Connection::ofApplication().value();
    const auto cookie =
        xcb_xkb_per_client_flags(connection.handle, XCB_XKB_ID_USE_CORE_KBD, flag, isOn ? flag : 0, 0, 0, 0);
    ASSERT_TRUE(owned(xcb_xkb_per_client_flags_reply(connection.handle, cookie, nullptr)));
  }

  /// Installs the key after the keyboard's past has gone by.
  void install() {
    EXPECT_TRUE(marker.catchUp());
    hotKey.install();
  }

  /// Whether these keys bring exactly one more press.
  bool bringsOnePress(const std::vector<xcb_keycode_t>& keys) {
    const auto before = presses.count();
    user.typeKeys(keys);
    return QTest::qWaitFor([&] { return presses.count() > before; }, 2000) && noFurtherPress(before + 1);
  }

  bool bringsNoPress(const std::vector<xcb_keycode_t>& keys) {
    const auto before = presses.count();
    user.typeKeys(keys);
    return noFurtherPress(before);
  }

  bool noFurtherPress(qsizetype expected) { return marker.catchUp() && presses.count() == expected; }

  X11Marker marker;
  X11Client user{testDisplay().name()};
  X11UserTime userTime;
  X11HotKey hotKey{userTime};
  QSignalSpy presses{&hotKey, &GlobalHotKey::pressed};
  QSignalSpy failures{&hotKey, &GlobalHotKey::failed};
};

} // namespace

TEST_F(X11HotKeyTest, IsHeardWhateverLockIsOn) {
  user.addModifierKey(mod3, scrollLock);
  install();
  ASSERT_EQ(failures.count(), 0);
  const std::vector<xcb_keycode_t> locks[] = {
      {}, {capsLock}, {numLock}, {scrollLock}, {capsLock, numLock, scrollLock}};
  for (const auto& keys : locks) {
    for (const xcb_keycode_t key : keys)
      user.typeKeys({key});
    EXPECT_TRUE(bringsOnePress({control, super, keyJ})) << keys.size();
    for (const xcb_keycode_t key : keys)
      user.typeKeys({key});
  }
  EXPECT_TRUE(bringsNoPress({control, keyJ}));
  EXPECT_TRUE(bringsNoPress({super, control, keyH}));
  user.removeModifierKey(mod3, scrollLock);
}

TEST_F(X11HotKeyTest, HoldingTheKeysIsOnePress) {
  setRepetition({QStringLiteral("20"), QStringLiteral("200")});
  // Repeats come as pairs of release and press, or as presses alone when a program asks for that.
  for (const bool pressesAlone : {false, true}) {
    repeatAsPressesAlone(pressesAlone);
    install();
    const auto before = presses.count();
    const KeyPressCount repeats(keyJ);
    for (const xcb_keycode_t key : {control, super, keyJ})
      user.pressKey(key);
    EXPECT_TRUE(QTest::qWaitFor([&] { return repeats.count() >= 4; }));
    // The modifiers stay down.
    user.releaseKey(keyJ);
    EXPECT_TRUE(noFurtherPress(before + 1)) << pressesAlone;
    user.pressKey(keyJ);
    EXPECT_TRUE(QTest::qWaitFor([&] { return presses.count() == before + 2; })) << pressesAlone;
    for (const xcb_keycode_t key : {keyJ, super, control})
      user.releaseKey(key);
  }
  repeatAsPressesAlone(false);
  setRepetition({});
}

// Another program may have but one of the combinations.
TEST_F(X11HotKeyTest, IsTakenWhenAnotherProgramHasItAndKeepsNothingUntilThatGivesItBack) {
  constexpr std::uint16_t withNumLock = controlAndSuper | XCB_MOD_MASK_2;
  const X11Client other(testDisplay().name());
  ASSERT_TRUE(other.grabKey(keyJ, withNumLock));
  install();
  ASSERT_EQ(failures.count(), 1);
  EXPECT_EQ(failures[0][0].value<Failure>(), Failure::taken);
  ASSERT_TRUE(marker.catchUp());
  EXPECT_TRUE(other.grabKey(keyJ, controlAndSuper));
  EXPECT_TRUE(bringsNoPress({control, super, keyJ}));

  const QSignalSpy installed(&hotKey, &GlobalHotKey::installed);
  for (const std::uint16_t modifiers : {withNumLock, controlAndSuper}) {
    hotKey.retry();
    EXPECT_EQ(installed.count(), 0);
    other.ungrabKey(keyJ, modifiers);
  }
  hotKey.retry();
  hotKey.retry();
  EXPECT_TRUE(failures.count() == 1 && installed.count() == 1);
  EXPECT_TRUE(bringsOnePress({control, super, keyJ}));
}

TEST_F(X11HotKeyTest, IsGivenBack) {
  const X11Client other(testDisplay().name());
  install();
  EXPECT_FALSE(other.grabKey(keyJ, controlAndSuper));
  hotKey.uninstall();
  EXPECT_TRUE(other.grabKey(keyJ, controlAndSuper));
  EXPECT_TRUE(other.grabKey(keyJ, controlAndSuper | XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2));
  EXPECT_TRUE(bringsNoPress({control, super, keyJ}));
}

TEST_F(X11HotKeyTest, FollowsTheLetterToAnotherLayout) {
  const QString us = QStringLiteral("us");
  const QString variant = QStringLiteral("-variant");
  struct Case {
    QStringList layout;
    xcb_keycode_t key;
    xcb_keycode_t otherKey;
  };
  const Case cases[] = {
      {{us, variant, QStringLiteral("dvorak")}, keyC, keyJ},
      // A layout without the letter.
      {{QStringLiteral("ru")}, keyJ, keyC},
      // With two layouts, the one in use counts: the first.
      {{QStringLiteral("us,us"), variant, QStringLiteral("dvorak,")}, keyC, keyJ},
      {{QStringLiteral("ru,us")}, keyJ, keyC},
      {{us}, keyJ, keyC},
  };
  install();
  for (const auto& [layout, key, otherKey] : cases) {
    setLayout(layout);
    ASSERT_TRUE(marker.catchUp());
    EXPECT_TRUE(bringsOnePress({control, super, key})) << qPrintable(layout[0]);
    EXPECT_TRUE(bringsNoPress({control, super, otherKey})) << qPrintable(layout[0]);
  }
  EXPECT_EQ(failures.count(), 0);
}

TEST_F(X11HotKeyTest, FollowsTheSwitchBetweenTwoLayouts) {
  setLayout({QStringLiteral("us,us"), QStringLiteral("-variant"), QStringLiteral(",dvorak"),
             QStringLiteral("-option"), QStringLiteral("grp:sclk_toggle")});
  install();
  EXPECT_TRUE(bringsOnePress({control, super, keyJ}));
  user.typeKeys({scrollLock});
  ASSERT_TRUE(marker.catchUp());
  EXPECT_TRUE(user.grabKey(keyJ, controlAndSuper));
  EXPECT_TRUE(bringsOnePress({control, super, keyC}));
}

TEST_F(X11HotKeyTest, FindsSuperOnAnotherModifier) {
  install();
  user.removeModifierKey(mod4, super);
  user.removeModifierKey(mod4, super + 1);
  user.removeModifierKey(mod4, hyper - 1);
  user.removeModifierKey(mod4, hyper);
  user.addModifierKey(mod3, super);
  ASSERT_TRUE(marker.catchUp());
  EXPECT_TRUE(user.grabKey(keyJ, controlAndSuper));
  EXPECT_TRUE(bringsOnePress({control, super, keyJ}));
}

// With the time of the key a window manager lets the window that is shown have the keyboard.
TEST_F(X11HotKeyTest, HandsOnWhenTheUserPressed) {
  install();
  QWidget window;
  window.setWindowFlag(Qt::Tool);
  QObject::connect(&hotKey, &GlobalHotKey::pressed, &window, &QWidget::show);
  for (const xcb_keycode_t key : {control, super, keyJ})
    user.pressKey(key);
  ASSERT_TRUE(QTest::qWaitFor([&] { return window.isVisible(); }));
  for (const xcb_keycode_t key : {keyJ, super, control})
    user.releaseKey(key);
  const auto noted = userTime.take();
  ASSERT_TRUE(noted.has_value());
  const auto shown = user.property(static_cast<xcb_window_t>(window.winId()), "_NET_WM_USER_TIME");
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0], noted);
}

} // namespace notlet
