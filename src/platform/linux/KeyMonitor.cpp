#include "platform/linux/KeyMonitor.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextLayout>
#include <QWindow>
#include <algorithm>
#include <array>
#include <xkbcommon/xkbcommon.h>

namespace notlet {

namespace {

struct PlacedKey {
  int key;
  std::uint16_t keyCode;
};

constexpr auto placedKeys = std::to_array<PlacedKey>({
    {Qt::Key_Return, KeyCode::returnKey},
    {Qt::Key_Enter, KeyCode::keypadEnter},
    {Qt::Key_Backspace, KeyCode::backspace},
    {Qt::Key_Escape, KeyCode::escape},
    {Qt::Key_Left, KeyCode::left},
    {Qt::Key_Right, KeyCode::right},
    {Qt::Key_Down, KeyCode::down},
    {Qt::Key_Up, KeyCode::up},
});

struct HeldModifier {
  Qt::KeyboardModifier held;
  std::uint32_t modifier;
};

constexpr auto heldModifiers = std::to_array<HeldModifier>({
    {Qt::ShiftModifier, KeyModifier::shift},
    {Qt::ControlModifier, KeyModifier::control},
    {Qt::AltModifier, KeyModifier::option},
    {Qt::MetaModifier, KeyModifier::command},
});

bool isBetween(quint32 value, quint32 first, quint32 last) {
  return value >= first && value <= last;
}

/// Some modifier keys have no name in Qt, so their key symbols are asked too.
bool isModifierKey(const QKeyEvent& event) {
  switch (event.key()) {
  case Qt::Key_Shift:
  case Qt::Key_Control:
  case Qt::Key_Meta:
  case Qt::Key_Alt:
  case Qt::Key_AltGr:
  case Qt::Key_CapsLock:
  case Qt::Key_NumLock:
  case Qt::Key_ScrollLock:
  case Qt::Key_Super_L:
  case Qt::Key_Super_R:
  case Qt::Key_Hyper_L:
  case Qt::Key_Hyper_R:
  case Qt::Key_Mode_switch:
    return true;
  default:
    break;
  }
  const quint32 symbol = event.nativeVirtualKey();
  return isBetween(symbol, XKB_KEY_Shift_L, XKB_KEY_Hyper_R) ||
         isBetween(symbol, XKB_KEY_ISO_Lock, XKB_KEY_ISO_Last_Group_Lock) ||
         isBetween(symbol, XKB_KEY_ISO_Level5_Shift, XKB_KEY_ISO_Level5_Lock);
}

/// The character that Qt names the key by, in lowercase.
std::optional<std::string> charactersOfKey(int key) {
  if (!isBetween(static_cast<quint32>(key), Qt::Key_Space, QChar::LastValidCodePoint))
    return std::nullopt;
  const auto character = static_cast<char32_t>(key);
  return QString::fromUcs4(&character, 1).toLower().toStdString();
}

/// QKeyEvent::text() would not do: under Control it is a control character or nothing.
std::optional<std::string> charactersOf(const QKeyEvent& event) {
  if (event.nativeVirtualKey() == XKB_KEY_NoSymbol)
    return charactersOfKey(event.key());
  return charactersOfSymbol(event.nativeVirtualKey());
}

bool isForeignLetter(const std::string& characters) {
  const auto points = QString::fromStdString(characters).toUcs4();
  return points.size() == 1 && QChar::isLetter(points.front()) &&
         QChar::script(points.front()) != QChar::Script_Latin;
}

/// Under Control Qt names a key by what it types on the user's Latin layout, if there is one. Otherwise its
/// place on the keyboard must do.
std::optional<std::string> latinCharactersOf(const QKeyEvent& event) {
  if (isBetween(static_cast<quint32>(event.key()), Qt::Key_Space, Qt::Key_AsciiTilde))
    return charactersOfKey(event.key());
  std::optional<std::string> typed = charactersOf(event);
  if (typed && isForeignLetter(*typed)) {
    if (std::optional<std::string> placed = americanCharacters(event.nativeScanCode()))
      return placed;
  }
  return typed;
}

QString uncommittedText(const QTextCursor& cursor) {
  const QTextLayout* layout = cursor.block().layout();
  return layout == nullptr ? QString() : layout->preeditAreaText();
}

} // namespace

std::optional<KeyPress> keyPressOf(const QKeyEvent& event) {
  if (isModifierKey(event))
    return std::nullopt;
  KeyPress press;
  const auto* const placed = std::ranges::find(placedKeys, event.key(), &PlacedKey::key);
  if (placed != placedKeys.end())
    press.keyCode = placed->keyCode;
  press.characters = charactersOf(event);
  press.latinCharacters = latinCharactersOf(event);
  press.isRepeat = event.isAutoRepeat();
  for (const auto& [held, modifier] : heldModifiers) {
    if (event.modifiers().testFlag(held))
      press.modifiers |= modifier;
  }
  return press;
}

namespace {

/// A key is held for longer before it repeats, in milliseconds; a program may press and release it at once.
constexpr quint64 shortestDelay = 50;

/// Other keys may walk from control to control while they are held.
bool pressesButtons(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter || event.key() == Qt::Key_Space;
}

quint32 placeOf(const QKeyEvent& event) {
  return event.nativeScanCode() != 0 ? event.nativeScanCode() : static_cast<quint32>(event.key());
}

} // namespace

KeyMonitor::KeyMonitor(Handler handler, QObject* parent) : QObject(parent), m_handler(std::move(handler)) {
  qApp->installEventFilter(this);
}

bool KeyMonitor::eventFilter(QObject* receiver, QEvent* event) {
  switch (event->type()) {
  case QEvent::ShortcutOverride:
  case QEvent::KeyPress:
    if (receiver->isWindowType())
      return keyAtWindow(static_cast<const QWindow&>(*receiver), static_cast<QKeyEvent&>(*event));
    return event->type() == QEvent::KeyPress && keyAtWidget(*receiver, static_cast<QKeyEvent&>(*event));
  case QEvent::KeyRelease:
    if (receiver->isWindowType()) {
      const auto& released = static_cast<const QKeyEvent&>(*event);
      m_released = {placeOf(released), released.timestamp()};
    }
    return false;
  case QEvent::InputMethod:
    m_composing = static_cast<QInputMethodEvent*>(event)->preeditString().isEmpty() ? nullptr : receiver;
    return false;
  default:
    return false;
  }
}

// A key first comes by as a shortcut override. Only who accepts that keeps the shortcuts from firing, so the
// handler decides then, and the key press that follows is treated alike.
bool KeyMonitor::keyAtWindow(const QWindow& window, QKeyEvent& event) {
  const bool isOverride = event.type() == QEvent::ShortcutOverride;
  const std::optional<Seen> before = std::exchange(m_override, std::nullopt);
  Seen seen{&event, event.timestamp(), event.key()};
  if (!isOverride && before && before->timestamp == seen.timestamp && before->key == seen.key)
    seen.consumed = before->consumed;
  else
    seen.consumed = consumes(event, window.modality() != Qt::NonModal);
  if (isOverride)
    m_override = seen;
  else
    m_atWindow = seen;
  if (seen.consumed)
    event.accept();
  return seen.consumed;
}

// An input method may hand a key that it has no use for straight to the focused control.
bool KeyMonitor::keyAtWidget(const QObject& receiver, const QKeyEvent& event) {
  const QWidget* focus = QApplication::focusWidget();
  if (focus == nullptr || focus != &receiver || focus->window()->isModal())
    return false;
  if (m_atWindow.event == &event && m_atWindow.timestamp == event.timestamp())
    return false;
  return consumes(event, false);
}

bool KeyMonitor::consumes(const QKeyEvent& event, bool isBlocked) {
  std::optional<KeyPress> press = keyPressOf(event);
  if (!press)
    return false;
  press->isRepeat = isRepeat(event);
  if (std::optional<std::string> latin = m_latinKeys.charactersOf(event))
    press->latinCharacters = std::move(latin);
  Pressed now{placeOf(event), event.timestamp(), QGuiApplication::focusObject()};
  now.isFree = !isBlocked && QApplication::activePopupWidget() == nullptr;
  now.isOffered = now.isFree && !isComposing();
  if (!press->isRepeat) {
    m_pressed = now;
    m_pressed.isConsumed = now.isOffered && m_handler(*press);
    return m_pressed.isConsumed;
  }
  const bool isForGoneDialog = now.isFree && !m_pressed.isFree;
  const bool isForOtherControl = pressesButtons(event) && now.focus != m_pressed.focus;
  if (isForGoneDialog || isForOtherControl)
    return true;
  const bool isTaken = now.isOffered && m_pressed.isOffered && m_handler(*press);
  return isTaken || m_pressed.isConsumed;
}

/// A held key comes as pairs of a release and a press at the same time, which Qt overlooks when it sees the
/// release alone at first.
bool KeyMonitor::isRepeat(const QKeyEvent& event) const {
  const quint32 place = placeOf(event);
  const bool followsRelease = place == m_released.place && event.timestamp() == m_released.timestamp &&
                              event.timestamp() >= m_pressed.timestamp + shortestDelay;
  return place == m_pressed.place && (event.isAutoRepeat() || followsRelease);
}

bool KeyMonitor::isComposing() const {
  const QObject* focus = QGuiApplication::focusObject();
  // Replacing the text of these ends a composition without an event.
  if (const auto* edit = qobject_cast<const QPlainTextEdit*>(focus))
    return !uncommittedText(edit->textCursor()).isEmpty();
  if (const auto* edit = qobject_cast<const QTextEdit*>(focus))
    return !uncommittedText(edit->textCursor()).isEmpty();
  return focus != nullptr && focus == m_composing;
}

} // namespace notlet
