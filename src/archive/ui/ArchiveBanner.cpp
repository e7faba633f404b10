#include "archive/ui/ArchiveBanner.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

#include "widgets/TextButton.h"
#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int narrowestMessage = 250;

} // namespace

ArchiveBanner::ArchiveBanner(QWidget* parent) : QWidget(parent), m_message(new QLabel) {
  m_message->setTextFormat(Qt::PlainText);
  m_message->setWordWrap(true);
  m_message->setFont(textFont(TextStyle::footnote));
  m_message->setForegroundRole(ThemeRole::primaryText);

  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(12, 8, 12, 8);
  rows->setSpacing(8);
  rows->addWidget(m_message);
  auto* save = new TextButton(tr("Save as new notlet"), TextButton::Look::standard);
  auto* discard = new TextButton(tr("Discard"), TextButton::Look::borderlessDestructive);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  buttons->addWidget(save);
  buttons->addWidget(discard);
  buttons->addStretch();
  rows->addLayout(buttons);
  connect(save, &TextButton::clicked, this, &ArchiveBanner::saveRequested);
  connect(discard, &TextButton::clicked, this, &ArchiveBanner::discardRequested);
}

void ArchiveBanner::setOrphanedEdit(const QString& text) {
  const QString message =
      tr("A notlet was deleted elsewhere while you had an unsaved edit of it. Your text is kept here: “%1”")
          .arg(excerptOf(text));
  m_message->setText(breakable(message, m_message->fontMetrics(), narrowestMessage));
  m_message->setAccessibleName(message);
}

void ArchiveBanner::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(palette().color(ThemeRole::outline), 1));
  painter.setBrush(palette().brush(ThemeRole::surface));
  constexpr double radius = 9;
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

} // namespace notlet
