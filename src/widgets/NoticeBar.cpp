#include "widgets/NoticeBar.h"

#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QPainter>

#include "widgets/IconButton.h"
#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int narrowestText = 260;

} // namespace

NoticeBar::NoticeBar(QWidget* parent)
    : QWidget(parent),
      m_label(new QLabel),
      m_dismiss(new IconButton(Symbol::xmarkCircleFill, QStringLiteral("Dismiss message"))) {
  m_label->setFont(textFont(TextStyle::footnote));
  m_label->setTextFormat(Qt::PlainText);
  m_label->setWordWrap(true);
  m_label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget* before, const QWidget* now) {
    if (now == m_dismiss && before != nullptr)
      m_before = before;
  });
  connect(m_dismiss, &IconButton::clicked, this, &NoticeBar::dismissed);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(16, 8, 8, 8);
  row->setSpacing(8);
  row->addWidget(m_label, 1);
  row->addWidget(m_dismiss, 0, Qt::AlignTop);
  hide();
}

void NoticeBar::setText(const QString& text) {
  if (m_label->accessibleName() == text)
    return;
  m_label->setAccessibleName(text);
  m_label->setText(breakable(text, m_label->fontMetrics(), narrowestText));
  if (text.isEmpty())
    giveKeyboardBack();
  setVisible(!text.isEmpty());
  if (text.isEmpty())
    return;
  QAccessibleEvent announcement(m_label, QAccessible::Alert);
  QAccessible::updateAccessibility(&announcement);
}

/// A button that goes would hand the keyboard on to the next one.
void NoticeBar::giveKeyboardBack() {
  if (window()->focusWidget() == m_dismiss && m_before && m_before->isVisible())
    m_before->setFocus(Qt::OtherFocusReason);
}

void NoticeBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().color(ThemeRole::surface));
  painter.fillRect(QRect(0, height() - 1, width(), 1), palette().color(ThemeRole::separator));
}

} // namespace notlet
