#include "capture/ui/ComposerCard.h"

#include <QEvent>
#include <QPainter>
#include <QTextDocument>
#include <QVBoxLayout>

#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int cornerRadius = 10;
constexpr int innerMargin = 12;
/// How far rows may reach beyond the text to both sides, for what has a padding of its own.
constexpr int rowOverhang = 6;
constexpr double legibleContrast = 3.0;

/// The editor has the focus most of the time, so its ring is as quiet as it can be and still be seen.
QColor ringColor(const QPalette& palette) {
  const QColor ring = palette.color(ThemeRole::focusRing);
  const QColor surface = palette.color(ThemeRole::surface);
  const QColor quiet = mixed(ring, surface, 0.4);
  return contrastRatio(quiet, surface) >= legibleContrast ? quiet : ring;
}

} // namespace

ComposerCard::ComposerCard(QWidget* parent) : QWidget(parent), m_editor(new ExactTextEdit(this)) {
  m_editor->setFrameShape(QFrame::NoFrame);
  m_editor->setFont(textFont(TextStyle::body));
  m_editor->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  m_editor->setTabChangesFocus(true);
  m_editor->document()->setDocumentMargin(2);
  m_editor->viewport()->setAutoFillBackground(false); // The card shows through.
  m_editor->installEventFilter(this);

  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(innerMargin - rowOverhang, innerMargin, innerMargin - rowOverhang, 8);
  rows->setSpacing(8);
  auto* inset = new QHBoxLayout;
  inset->setContentsMargins(rowOverhang, 0, rowOverhang, 0);
  inset->addWidget(m_editor);
  rows->addLayout(inset, 1);
}

void ComposerCard::addRow(QWidget* row) {
  layout()->addWidget(row);
}

bool ComposerCard::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
    update();
  return QWidget::eventFilter(watched, event);
}

void ComposerCard::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const bool isFocused = m_editor->hasFocus();
  const qreal lineWidth = isFocused ? 1.5 : 1.0;
  painter.setBrush(palette().color(ThemeRole::surface));
  painter.setPen(QPen(isFocused ? ringColor(palette()) : palette().color(ThemeRole::separator), lineWidth));
  const qreal inset = lineWidth / 2;
  painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), cornerRadius, cornerRadius);
}

void ComposerCard::mousePressEvent(QMouseEvent*) {
  m_editor->setFocus(Qt::MouseFocusReason);
}

} // namespace notlet
