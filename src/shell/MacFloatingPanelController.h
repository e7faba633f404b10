#pragma once

#include <QObject>
#include <QPointF>
#include <QRectF>
#include <optional>

#include "commands/NotificationCenter.h"
#include "platform/Defaults.h"
#include "platform/Screens.h"
#include "shell/BubblePosition.h"
#include "shell/FloatingGeometry.h"
#include "shell/FloatingPanel.h"
#include "shortcuts/MacShortcutCoordinator.h"

namespace notlet {

/// Bubble mode: a bubble that stands above all windows in place of the main window, and expands into the
/// capture panel.
///
/// As long as there is no screen the panel is hidden, whatever the mode; it comes back with a screen.
class MacFloatingPanelController : public QObject {
  Q_OBJECT

 public:
  /// All must outlive the controller.
  struct Surroundings {
    FloatingPanel& panel;
    const Screens& screens;
    Defaults& defaults;
    NotificationCenter& notificationCenter;
    MacShortcutCoordinator& coordinator;
  };

  explicit MacFloatingPanelController(const Surroundings& surroundings, QObject* parent = nullptr);
  ~MacFloatingPanelController() override;

  [[nodiscard]] bool isFloatingMode() const { return m_state != State::off; }
  /// Only in floating mode.
  [[nodiscard]] bool isExpanded() const { return m_state == State::expanded; }

  /// Shows the bubble where it stood last, without taking the keyboard.
  void enterFloatingMode();
  void exitFloatingMode();
  /// Puts the panel at the bubble and gives it the keyboard, also when it is expanded already.
  void expandCapture();
  void collapseCapture();
  void toggleCapture();
  /// The capture panel's way back: ends floating mode and asks for the main window.
  void returnToMainApp();

  /// The pointer moved the bubble by that much (y upward) since the last call. Its place counts, and is
  /// remembered, when the drag has ended.
  void dragBubble(const QPointF& movement, bool ended);
  /// The user has moved the expanded panel, or only pressed its header.
  void captureDragEnded();

 Q_SIGNALS:
  void mainAppRequested();

 private:
  enum class State { off, bubble, expanded };

  void setState(State state);
  void appear();
  void disappear();
  void dropInput();
  void followScreens();
  [[nodiscard]] QRectF currentFrame(const FloatingGeometry& geometry) const;
  [[nodiscard]] FloatingGeometry geometry() const { return FloatingGeometry(m_surroundings.screens); }
  void settleBubble(const QPointF& center, const std::optional<ScreenArea>& screen);

  Surroundings m_surroundings;
  BubblePosition m_position;
  /// Also what the expanded panel is anchored at.
  QPointF m_bubbleCenter;
  /// Where a drag of the bubble that goes on has brought it, beyond the edges too.
  std::optional<QRectF> m_draggedFrame;
  State m_state = State::off;
  /// False in floating mode while there is no screen.
  bool m_isOnScreen = false;
};

} // namespace notlet
