#include "platform/linux/KeyMonitor.h"

#include <QDialog>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <QTextEdit>
#include <QVBoxLayout>
#include <QWindow>
#include <gmock/gmock.h>

namespace notlet {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t shift = KeyModifier::shift;
constexpr std::uint32_t control = KeyModifier::control;

TEST(KeyPressOf, KeysAreTranslated) {
  struct Case {
    std::string name;
    int key;
    Qt::KeyboardModifiers modifiers;
    quint32 symbol;
    KeyPress press;
    quint32 scanCode = 0;
  };
  const std::vector<Case> cases = {
      {"letter", Qt::Key_J, Qt::NoModifier, 'j', {KeyCode::other, "j", "j", 0}},
      {"letter with shift", Qt::Key_J, Qt::ShiftModifier, 'J', {KeyCode::other, "J", "j", shift}},
      {"letter with control", Qt::Key_S, Qt::ControlModifier, 's', {KeyCode::other, "s", "s", control}},
      {"letter with Alt", Qt::Key_J, Qt::AltModifier, 'j', {KeyCode::other, "j", "j", 0x80000}},
      {"letter with Super", Qt::Key_J, Qt::MetaModifier, 'j', {KeyCode::other, "j", "j", 0x100000}},
      {"all modifiers",
       Qt::Key_J,
       Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier,
       'J',
       {KeyCode::other, "J", "j", 0x1E0000}},
      {"slash", Qt::Key_Slash, Qt::NoModifier, '/', {KeyCode::other, "/", "/", 0}},
      {"shifted slash", Qt::Key_Question, Qt::ShiftModifier, '?', {KeyCode::other, "?", "?", shift}},
      {"space", Qt::Key_Space, Qt::NoModifier, ' ', {KeyCode::other, " ", " ", 0}},
      {"umlaut", Qt::Key_Adiaeresis, Qt::NoModifier, 0xe4, {KeyCode::other, "ä", "ä", 0}},
      {"Cyrillic letter", Qt::Key_S, Qt::ControlModifier, 0x6d9, {KeyCode::other, "ы", "s", control}},
      {"Cyrillic letter that Qt calls by itself",
       0x42B,
       Qt::NoModifier,
       0x6d9,
       {KeyCode::other, "ы", "s", 0},
       39},
      {"Cyrillic letter in the place of a sign",
       0x42D,
       Qt::NoModifier,
       0x6dc,
       {KeyCode::other, "э", "'", 0},
       48},
      {"Cyrillic letter where no American key is",
       0x401,
       Qt::NoModifier,
       0x6a3,
       {KeyCode::other, "ё", "ё", 0},
       94},
      {"Latin letter in the place of another",
       Qt::Key_Odiaeresis,
       Qt::NoModifier,
       0xf6,
       {KeyCode::other, "ö", "ö", 0},
       47},
      {"Greek letter", Qt::Key_S, Qt::NoModifier, 0x7f2, {KeyCode::other, "σ", "s", 0}},
      {"keypad digit", Qt::Key_1, Qt::KeypadModifier, 0xffb1, {KeyCode::other, "1", "1", 0}},
      {"keypad slash", Qt::Key_Slash, Qt::KeypadModifier, 0xffaf, {KeyCode::other, "/", "/", 0}},
      {"AltGr, which is not Alt", Qt::Key_At, Qt::GroupSwitchModifier, '@', {KeyCode::other, "@", "@", 0}},
      {"no key symbol", Qt::Key_J, Qt::ControlModifier, 0, {KeyCode::other, "j", "j", control}},
      {"no key symbol, beyond 16 bits",
       0x1D4B3,
       Qt::NoModifier,
       0,
       {KeyCode::other, "\xF0\x9D\x92\xB3", "\xF0\x9D\x92\xB3", 0}},
      {"function key", Qt::Key_F5, Qt::NoModifier, 0xffc2, {}},
      {"function key without symbol", Qt::Key_F5, Qt::NoModifier, 0, {}},
      {"page key",
       Qt::Key_PageDown,
       Qt::ShiftModifier,
       0xff56,
       {KeyCode::other, std::nullopt, std::nullopt, shift}},
      {"tab", Qt::Key_Tab, Qt::NoModifier, 0xff09, {KeyCode::other, "\t", "\t", 0}},
      {"unknown key", Qt::Key_unknown, Qt::NoModifier, 0, {}},
      {"no key at all", 0, Qt::NoModifier, 0, {}},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.name);
    const QKeyEvent event(QEvent::KeyPress, one.key, one.modifiers, one.scanCode, one.symbol, 0);
    const auto press = keyPressOf(event);
    ASSERT_TRUE(press);
    EXPECT_EQ(press->keyCode, one.press.keyCode);
    EXPECT_EQ(press->characters, one.press.characters);
    EXPECT_EQ(press->latinCharacters, one.press.latinCharacters);
    EXPECT_EQ(press->modifiers, one.press.modifiers);
  }
}

TEST(KeyPressOf, SomeKeysAreKnownByTheirPlace) {
  struct Case {
    Qt::Key key;
    quint32 symbol;
    std::uint16_t keyCode;
  };
  for (const auto& [key, symbol, keyCode] :
       {Case{Qt::Key_Return, 0xff0d, 36}, Case{Qt::Key_Enter, 0xff8d, 76},
        Case{Qt::Key_Backspace, 0xff08, 51}, Case{Qt::Key_Escape, 0xff1b, 53},
        Case{Qt::Key_Left, 0xff51, 123}, Case{Qt::Key_Right, 0xff53, 124}, Case{Qt::Key_Down, 0xff54, 125},
        Case{Qt::Key_Down, 0xff99, 125}, Case{Qt::Key_Up, 0xff52, 126}}) {
    const QKeyEvent native(QEvent::KeyPress, key, Qt::NoModifier, 38, symbol, 0);
    const QKeyEvent plain(QEvent::KeyPress, key, Qt::KeypadModifier);
    EXPECT_EQ(keyPressOf(native).value().keyCode, keyCode) << key;
    EXPECT_EQ(keyPressOf(plain).value().keyCode, keyCode) << key;
  }
}

// A leader would not survive that the next key is typed with shift.
TEST(KeyPressOf, ModifiersAreNoKeys) {
  for (const Qt::Key key :
       {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_Meta, Qt::Key_Super_L, Qt::Key_Super_R,
        Qt::Key_AltGr, Qt::Key_CapsLock, Qt::Key_NumLock, Qt::Key_Mode_switch})
    EXPECT_EQ(keyPressOf(QKeyEvent(QEvent::KeyPress, key, Qt::NoModifier)), std::nullopt) << key;
  for (const quint32 symbol : {0xffe1U, 0xffeeU, 0xfe03U, 0xfe08U, 0xfe11U})
    EXPECT_EQ(keyPressOf(QKeyEvent(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, 50, symbol, 0)),
              std::nullopt)
        << symbol;
}

TEST(KeyPressOf, AHeldKeyIsToldFromAPressedOne) {
  for (const bool isHeld : {false, true}) {
    const QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"), isHeld);
    EXPECT_EQ(keyPressOf(event).value().isRepeat, isHeld);
  }
}

// The evdev codes of the keys that are j, e, / and q on an American keyboard.
TEST(LatinKeysTest, KeysOfOtherScriptsAreKnownByWhatTheyTypeInLatin) {
  constexpr std::array<xkb_keycode_t, 4> places{44, 26, 61, 24};
  struct Case {
    const char* layouts;
    const char* variants;
    xkb_layout_index_t inUse;
    std::array<const char*, 4> latin;
  };
  constexpr std::array<const char*, 4> american{"j", "e", "/", "q"};
  constexpr std::array<const char*, 4> isLatinItself{};
  for (const Case& one : {
           Case{"ru", "", 0, american},
           {"gr", "", 0, american},
           {"il", "", 0, american},
           {"th", "", 0, american},
           {"us,ru", "", 1, american},
           {"ru,us", ",", 0, american},
           {"us,ru", "dvorak,", 1, {"h", ".", "z", "'"}},
           {"fr,ru", "", 1, {"j", "e", "!", "a"}},
           {"us,ru", "", 0, isLatinItself},
           {"us", "dvorak", 0, isLatinItself},
           {"fr", "", 0, isLatinItself},
           {"tr", "f", 0, isLatinItself},
           {"rs", "latin", 0, isLatinItself},
       }) {
    SCOPED_TRACE(std::string(one.layouts) + " " + one.variants + " " + std::to_string(one.inUse));
    const xkb_rule_names names{"evdev", "pc105", one.layouts, one.variants, ""};
    xkb_context* context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    const XkbKeymap keymap(xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    xkb_context_unref(context);
    ASSERT_TRUE(keymap);
    for (std::size_t index = 0; index < places.size(); ++index) {
      const auto latin = latinCharacters(keymap.get(), places[index], one.inUse);
      EXPECT_EQ(latin, one.latin[index] ? std::optional<std::string>(one.latin[index]) : std::nullopt);
    }
  }
}

class KeyMonitorTest : public testing::Test {
 protected:
  KeyMonitorTest() {
    auto* layout = new QVBoxLayout(&window);
    for (QWidget* child : std::initializer_list<QWidget*>{&line, &plainText, &richText, &button})
      layout->addWidget(child);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    line.setFocus();
  }

  void type(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(QGuiApplication::focusWindow(), key, modifiers);
  }
  /// The names of the keys that the handler has seen since the last call.
  std::vector<std::string> seen() { return std::exchange(m_seen, {}); }

  QWidget window;
  QLineEdit line;
  QPlainTextEdit plainText;
  QTextEdit richText;
  QPushButton button{QStringLiteral("Button")};
  bool consumes = false;

 private:
  bool see(const KeyPress& press) {
    m_seen.push_back(press.characters.value_or(std::to_string(press.keyCode)));
    return consumes;
  }

  std::vector<std::string> m_seen;
  KeyMonitor m_monitor{[this](const KeyPress& press) { return see(press); }};
};

TEST_F(KeyMonitorTest, AConsumedKeyReachesNoWidget) {
  consumes = true;
  const QSignalSpy clicks(&button, &QPushButton::clicked);
  const QSignalSpy entered(&line, &QLineEdit::returnPressed);
  struct Case {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
  };
  for (const auto& [key, modifiers] :
       {Case{Qt::Key_J, Qt::NoModifier}, Case{Qt::Key_J, Qt::MetaModifier}, Case{Qt::Key_J, Qt::AltModifier},
        Case{Qt::Key_A, Qt::ControlModifier}, Case{Qt::Key_Return, Qt::NoModifier}}) {
    for (QWidget* focus : std::initializer_list<QWidget*>{&line, &plainText, &richText, &button}) {
      focus->setFocus();
      type(key, modifiers);
      EXPECT_EQ(seen().size(), 1U);
    }
  }
  EXPECT_EQ(line.text() + plainText.toPlainText() + richText.toPlainText(), QString());
  EXPECT_EQ(clicks.count() + entered.count(), 0);
}

TEST_F(KeyMonitorTest, OtherKeysAreTypedOnce) {
  for (QWidget* focus : std::initializer_list<QWidget*>{&line, &plainText, &richText}) {
    focus->setFocus();
    type(Qt::Key_J);
    type(Qt::Key_K);
    EXPECT_THAT(seen(), ElementsAre("j", "k"));
  }
  EXPECT_EQ(line.text(), u"jk");
  EXPECT_EQ(plainText.toPlainText(), u"jk");
  EXPECT_EQ(richText.toPlainText(), u"jk");
}

// A key that nobody wants goes on to the parents of the focused control; the handler has seen it already.
TEST_F(KeyMonitorTest, AKeyThatTravelsUpwardsIsSeenOnce) {
  button.setFocus();
  type(Qt::Key_F5);
  type(Qt::Key_X);
  EXPECT_EQ(seen().size(), 2U);
}

TEST_F(KeyMonitorTest, AConsumedKeyFiresNoShortcut) {
  const QShortcut shortcut(QKeySequence(Qt::CTRL | Qt::Key_S), &window);
  const QSignalSpy fired(&shortcut, &QShortcut::activated);
  consumes = true;
  type(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(fired.count(), 0);
  EXPECT_THAT(seen(), ElementsAre("s"));
  consumes = false;
  type(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(fired.count(), 1);
  EXPECT_THAT(seen(), ElementsAre("s"));
}

TEST_F(KeyMonitorTest, RepeatsAreSeenAndModifiersAreNot) {
  QTest::keyPress(window.windowHandle(), Qt::Key_Control, Qt::ControlModifier);
  QTest::keyPress(window.windowHandle(), Qt::Key_Shift, Qt::ShiftModifier);
  EXPECT_THAT(seen(), IsEmpty());
  for (int count = 0; count < 3; ++count)
    QTest::simulateEvent(window.windowHandle(), true, Qt::Key_Down, Qt::NoModifier, QString(), count > 0);
  EXPECT_EQ(seen().size(), 3U);
}

// A dialog that the key opened would be answered by its repeats.
TEST_F(KeyMonitorTest, AHeldKeyBelongsToWhomItWasPressedFor) {
  QDialog dialog(&window);
  QLineEdit answer(&dialog);
  for (const bool consuming : {true, false}) {
    for (const bool isKnownToQt : {true, false}) {
      consumes = consuming;
      const auto send = [&](QWidget& shown, QEvent::Type type, ulong time, bool isRepeat) {
        QKeyEvent event(type, Qt::Key_J, Qt::NoModifier, 44, 'j', 0, QStringLiteral("j"), isRepeat);
        event.setTimestamp(time);
        QCoreApplication::sendEvent(shown.windowHandle(), &event);
      };
      line.clear();
      answer.clear();
      answer.setFocus();
      send(window, QEvent::KeyPress, 1000, false);
      EXPECT_EQ(seen().size(), 1U);
      consumes = false;
      dialog.open();
      ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
      send(dialog, QEvent::KeyRelease, 1250, isKnownToQt);
      send(dialog, QEvent::KeyPress, 1250, isKnownToQt);
      EXPECT_EQ(answer.text(), consuming ? QString() : QStringLiteral("j"));
      send(dialog, QEvent::KeyRelease, 1300, false);
      send(dialog, QEvent::KeyPress, 1400, false);
      EXPECT_TRUE(answer.text().endsWith(u'j')) << "it was pressed anew";
      dialog.close();
      ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
      consumes = true;
      send(window, QEvent::KeyRelease, 1500, isKnownToQt);
      send(window, QEvent::KeyPress, 1500, isKnownToQt);
      EXPECT_THAT(seen(), IsEmpty()) << "pressed for the dialog";
      EXPECT_EQ(line.text(), consuming ? QString() : QStringLiteral("j"));
    }
  }
}

// Return on a suggestion gives the keyboard to the text, which its repeats would save.
TEST_F(KeyMonitorTest, AHeldReturnPressesOneControlOnly) {
  const QSignalSpy entered(&line, &QLineEdit::returnPressed);
  button.setAutoDefault(true);
  QObject::connect(&button, &QPushButton::clicked, &line, [this] { line.setFocus(); });
  button.setFocus();
  for (const bool isRepeat : {false, true, true})
    QTest::simulateEvent(window.windowHandle(), true, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"),
                         isRepeat);
  EXPECT_TRUE(line.hasFocus());
  EXPECT_EQ(entered.count(), 0);
  type(Qt::Key_Return);
  EXPECT_EQ(entered.count(), 1);
}

TEST_F(KeyMonitorTest, KeysAreLeftToAnInputMethodThatComposes) {
  consumes = true;
  for (QWidget* focus : std::initializer_list<QWidget*>{&line, &plainText, &richText}) {
    focus->setFocus();
    QInputMethodEvent composes(QStringLiteral("かな"), {});
    QCoreApplication::sendEvent(focus, &composes);
    type(Qt::Key_Escape);
    EXPECT_THAT(seen(), IsEmpty()) << focus->metaObject()->className();
    QInputMethodEvent commits;
    commits.setCommitString(QStringLiteral("仮名"));
    QCoreApplication::sendEvent(focus, &commits);
    type(Qt::Key_Escape);
    EXPECT_EQ(seen().size(), 1U) << focus->metaObject()->className();
  }

  // What one control still holds is nothing to another, and goes with the text.
  line.setFocus();
  QInputMethodEvent composes(QStringLiteral("かな"), {});
  QCoreApplication::sendEvent(&line, &composes);
  button.setFocus();
  type(Qt::Key_Escape);
  EXPECT_EQ(seen().size(), 1U);
  for (QWidget* focus : std::initializer_list<QWidget*>{&plainText, &richText}) {
    focus->setFocus();
    QCoreApplication::sendEvent(focus, &composes);
    plainText.clear();
    richText.clear();
    type(Qt::Key_Escape);
    EXPECT_EQ(seen().size(), 1U) << focus->metaObject()->className();
  }
}

TEST_F(KeyMonitorTest, AKeyFromAnInputMethodIsSeenAtTheFocusedControl) {
  const QSignalSpy entered(&line, &QLineEdit::returnPressed);
  for (const bool consuming : {true, false}) {
    consumes = consuming;
    // The same object comes again as another key, as on the stack of an input method.
    for (int count = 0; count < 2; ++count) {
      QKeyEvent forwarded(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
      QCoreApplication::sendEvent(&line, &forwarded);
      EXPECT_EQ(seen().size(), 1U);
    }
    EXPECT_EQ(entered.count(), consuming ? 0 : 2);
  }
  QKeyEvent elsewhere(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
  QCoreApplication::sendEvent(&button, &elsewhere);
  EXPECT_THAT(seen(), IsEmpty());
}

TEST_F(KeyMonitorTest, MenusAndDialogsKeepTheirKeys) {
  consumes = true;
  QMenu menu;
  QAction* action = menu.addAction(QStringLiteral("Action"));
  const QSignalSpy chosen(action, &QAction::triggered);
  menu.popup(QPoint(10, 10));
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&menu));
  QTest::keyClick(menu.windowHandle(), Qt::Key_Down);
  QTest::keyClick(menu.windowHandle(), Qt::Key_Return);
  EXPECT_EQ(chosen.count(), 1);
  EXPECT_FALSE(menu.isVisible());

  QDialog dialog(&window);
  dialog.open();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
  QTest::keyClick(dialog.windowHandle(), Qt::Key_Escape);
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_THAT(seen(), IsEmpty());

  QDialog tool(&window);
  tool.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&tool));
  QTest::keyClick(tool.windowHandle(), Qt::Key_Escape);
  EXPECT_TRUE(tool.isVisible()) << "A window that blocks no other is one like the main window.";
  EXPECT_EQ(seen().size(), 1U);
}

} // namespace
} // namespace notlet
