#include "archive/ui/RowEditor.h"

#include <QEvent>
#include <QPainter>
#include <QVBoxLayout>

#include "widgets/ThemePalette.h"
#include "widgets/ThemedButton.h"

namespace notlet {

namespace {

constexpr int padding = 8;
constexpr int leastHeight = 120;
constexpr double radius = 10;

} // namespace

RowEditor::RowEditor(QWidget* parent) : QWidget(parent), m_edit(new FittingTextEdit) {
  m_edit->setReportsReturn(false);
  m_edit->setAccessibleName(QStringLiteral("Edit notlet"));
  m_edit->installEventFilter(this);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(padding, padding, padding, padding);
  layout->addWidget(m_edit);
  setFocusProxy(m_edit);
  setHighest(leastHeight);
}

void RowEditor::setHighest(int height) {
  m_edit->setHeights(leastHeight - 2 * padding, height - 2 * padding, true);
}

bool RowEditor::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
    update();
  return QWidget::eventFilter(watched, event);
}

void RowEditor::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(palette().brush(ThemeRole::surface));
  painter.setPen(QPen(controlOutline(palette()), 1));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
  if (m_edit->hasFocus())
    ThemedButton::paintFocusRing(painter, rect(), radius, palette());
}

void RowEditor::mousePressEvent(QMouseEvent*) {
  m_edit->setFocus(Qt::MouseFocusReason);
}

} // namespace notlet
