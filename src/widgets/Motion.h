#pragma once

#include <QEasingCurve>
#include <QObject>
#include <chrono>

class QGraphicsOpacityEffect;
class QPropertyAnimation;
class QWidget;

namespace notlet::Motion {

/// How long scrolling to a row or fading takes; nothing when the desktop asks for no animation.
[[nodiscard]] std::chrono::milliseconds duration(const QWidget* widget);
/// How motion runs: quick first, slow at its end.
[[nodiscard]] QEasingCurve curve();
/// Told by the desktop's own settings; holds for the whole program.
void setReduced(bool reduced);

} // namespace notlet::Motion

namespace notlet {

/// Fades a widget in and out, for short confirmations. Child of that widget, which starts hidden.
class FadeEffect : public QObject {
  Q_OBJECT

 public:
  explicit FadeEffect(QWidget* target);

  /// Shows or hides the widget; does nothing when it already is, or is becoming, what is asked.
  void setShown(bool shown);
  [[nodiscard]] bool isShown() const { return m_isShown; }

 private:
  void settle();

  QWidget* m_target;
  QGraphicsOpacityEffect* m_opacity;
  QPropertyAnimation* m_animation;
  bool m_isShown = false;
};

} // namespace notlet
