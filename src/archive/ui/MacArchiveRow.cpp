#include "archive/ui/MacArchiveRow.h"

#include <QFontMetrics>
#include <QPainter>

#include "core/DateFormatting.h"
#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"
#include "widgets/ThemedButton.h"

namespace notlet {

namespace {

constexpr QMargins margins = RowMeasures::cardMargins + RowMeasures::contentMargins;

int contentWidth(int rowWidth) {
  return rowWidth - margins.left() - margins.right();
}

QRectF cardOf(const QRect& row) {
  return row.marginsRemoved(RowMeasures::cardMargins);
}

} // namespace

QString creationText(const NotletEntry& notlet) {
  const DateFormatting& formatting = DateFormatting::shared();
  return fromUtf8(formatting.day(notlet.createdAt)) + QStringLiteral(" at ") +
         fromUtf8(formatting.timeOfDay(notlet.createdAt));
}

void paintRowCard(QPainter& painter, const QRect& row, const QPalette& palette, bool isFocused) {
  const QRectF card = cardOf(row);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(palette.color(ThemeRole::separator), 1));
  painter.setBrush(palette.brush(ThemeRole::surface));
  painter.drawRoundedRect(card.adjusted(0.5, 0.5, -0.5, -0.5), RowMeasures::cardRadius,
                          RowMeasures::cardRadius);
  if (isFocused)
    ThemedButton::paintFocusRing(painter, card, RowMeasures::cardRadius, palette);
}

MacArchiveRow::MacArchiveRow(const NotletEntry& notlet, int width)
    : m_width(width),
      m_text(WrappedText::beginningOf(notlet.content, textFont(TextStyle::body), contentWidth(width),
                                      RowMeasures::collapsedLines)),
      m_date(creationText(notlet)),
      m_chips(notlet.hashtags),
      m_dateTop(margins.top() + m_text.height() + RowMeasures::partSpacing) {
  m_height = m_dateTop + QFontMetrics(textFont(TextStyle::caption)).height() + margins.bottom();
  if (!m_chips.isEmpty())
    m_height += RowMeasures::partSpacing + m_chips.height();
}

QRect MacArchiveRow::chipArea() const {
  return {margins.left(), m_height - margins.bottom() - m_chips.height(), contentWidth(m_width),
          m_chips.height()};
}

void MacArchiveRow::paint(QPainter& painter, const QRect& rect, const QPalette& palette,
                          const VirtualListRows::PaintState& state, int chipOffset) const {
  painter.save();
  QColor ground = palette.color(ThemeRole::background);
  if (state.isCurrent) {
    ground = palette.color(ThemeRole::surface);
    paintRowCard(painter, rect, palette, state.isFocused);
  } else if (state.isHovered) {
    ground = rowUnderPointer(palette);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(cardOf(rect), RowMeasures::cardRadius, RowMeasures::cardRadius);
  }
  painter.setPen(palette.color(ThemeRole::primaryText));
  m_text.paint(painter, rect.topLeft() + QPoint(margins.left(), margins.top()));

  const QFont caption = textFont(TextStyle::caption);
  const QRect dateRect(rect.left() + margins.left(), rect.top() + m_dateTop, contentWidth(m_width),
                       QFontMetrics(caption).height());
  painter.setFont(caption);
  painter.setPen(palette.color(ThemeRole::secondaryText));
  painter.drawText(dateRect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, m_date);
  if (!m_chips.isEmpty())
    m_chips.paint(painter, chipArea().translated(rect.topLeft()), chipOffset, palette, ground);
  if (state.hasSeparator && !state.isHovered) {
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(QRect(rect.left() + margins.left(), rect.bottom(), contentWidth(m_width), 1),
                     palette.color(ThemeRole::separator));
  }
  painter.restore();
}

} // namespace notlet
