#include "widgets/Motion.h"

#include <QGraphicsOpacityEffect>
#include <QPropertyAnimation>
#include <QStyle>
#include <QWidget>

namespace notlet {

namespace {

bool isReduced = false;

} // namespace

namespace Motion {

std::chrono::milliseconds duration(const QWidget* widget) {
  using namespace std::chrono_literals;
  const bool animates =
      !isReduced && widget->style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, widget) > 0;
  return animates ? 120ms : 0ms;
}

QEasingCurve curve() {
  return QEasingCurve::OutCubic;
}

void setReduced(bool reduced) {
  isReduced = reduced;
}

} // namespace Motion

FadeEffect::FadeEffect(QWidget* target)
    : QObject(target),
      m_target(target),
      m_opacity(new QGraphicsOpacityEffect(target)),
      m_animation(new QPropertyAnimation(m_opacity, "opacity", this)) {
  m_opacity->setOpacity(0);
  target->setGraphicsEffect(m_opacity);
  target->hide();
  m_animation->setEasingCurve(Motion::curve());
  connect(m_animation, &QPropertyAnimation::finished, this, &FadeEffect::settle);
}

/// An effect costs a picture of the widget at every painting, so it is in force only while something fades.
void FadeEffect::settle() {
  m_opacity->setOpacity(m_isShown ? 1.0 : 0.0);
  m_opacity->setEnabled(!m_isShown);
  m_target->setVisible(m_isShown);
}

void FadeEffect::setShown(bool shown) {
  if (shown == m_isShown)
    return;
  m_isShown = shown;
  m_animation->stop();
  // In a window that is not there yet, nobody sees anything come or go.
  if (!m_target->window()->isVisible())
    return settle();
  m_opacity->setEnabled(true);
  if (shown)
    m_target->show();
  m_animation->setDuration(static_cast<int>(Motion::duration(m_target).count()));
  m_animation->setStartValue(m_opacity->opacity());
  m_animation->setEndValue(shown ? 1.0 : 0.0);
  m_animation->start();
}

} // namespace notlet
