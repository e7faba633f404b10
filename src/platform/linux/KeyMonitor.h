#pragma once

#include <QObject>
#include <QPointer>
#include <functional>
#include <optional>

#include "platform/KeyPress.h"
#include "platform/linux/LatinKeys.h"

class QKeyEvent;
class QWindow;

namespace notlet {

/// What a key event means to the shortcuts; nothing for the keys that only modify others.
[[nodiscard]] std::optional<KeyPress> keyPressOf(const QKeyEvent& event);

/// Shows every key press in the program's windows, repeats too, to a handler before the focused control gets
/// it.
///
/// When the handler answers true the key is consumed: no widget receives it and no shortcut fires. Keys do
/// not come by while an input method composes text, and those for menus, pop-ups and modal dialogs never do:
/// they belong to what the user must answer first. A key that is held belongs to whom it was pressed for,
/// whatever comes up meanwhile.
class KeyMonitor : public QObject {
  Q_OBJECT

 public:
  using Handler = std::function<bool(const KeyPress&)>;

  explicit KeyMonitor(Handler handler, QObject* parent = nullptr);

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  /// A key event comes by several times; the handler sees it once.
  struct Seen {
    const QKeyEvent* event = nullptr;
    quint64 timestamp = 0;
    int key = 0;
    bool consumed = false;
  };

  /// The key that was pressed last, by its place where that is known.
  struct Pressed {
    quint32 place = 0;
    quint64 timestamp = 0;
    QPointer<const QObject> focus;
    /// No dialog and no menu had the keyboard.
    bool isFree = false;
    bool isOffered = false;
    bool isConsumed = false;
  };
  struct Released {
    quint32 place = 0;
    quint64 timestamp = 0;
  };

  bool keyAtWindow(const QWindow& window, QKeyEvent& event);
  bool keyAtWidget(const QObject& receiver, const QKeyEvent& event);
  [[nodiscard]] bool consumes(const QKeyEvent& event, bool isBlocked);
  [[nodiscard]] bool isRepeat(const QKeyEvent& event) const;
  [[nodiscard]] bool isComposing() const;

  Handler m_handler;
  LatinKeys m_latinKeys;
  /// The key whose shortcut override has come by, and which is to follow as a key press.
  std::optional<Seen> m_override;
  /// The last key press at a window.
  Seen m_atWindow;
  Pressed m_pressed;
  Released m_released;
  /// The control for which an input method holds text that is not committed yet.
  QPointer<QObject> m_composing;
};

} // namespace notlet
