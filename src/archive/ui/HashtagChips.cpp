#include "archive/ui/HashtagChips.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStringList>

#include "widgets/TextConversion.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int spacing = 5;
constexpr int fadeWidth = 28;
/// Nobody reads more, and a text may consist of nothing but hashtags.
constexpr std::size_t mostChips = 500;
constexpr std::size_t longestTag = 256;

QString shownTag(std::string_view tag) {
  // A cut character shows as a replacement character, under an ellipsis that is there anyway.
  return fromUtf8(tag.substr(0, longestTag));
}

void fade(QPainter& painter, const QRect& area, bool atLeft, const QColor& ground) {
  QRect rect(area.left(), area.top(), std::min(fadeWidth, area.width()), area.height());
  if (!atLeft)
    rect.moveRight(area.right());
  QColor clear = ground;
  clear.setAlpha(0);
  QLinearGradient gradient(rect.topLeft(), rect.topRight());
  gradient.setColorAt(0, atLeft ? ground : clear);
  gradient.setColorAt(1, atLeft ? clear : ground);
  painter.fillRect(rect, gradient);
}

} // namespace

HashtagChips::HashtagChips(const WordList& hashtags) {
  for (const std::string_view tag : hashtags) {
    if (m_chips.size() == mostChips)
      break;
    const PillContent content{shownTag(tag)};
    const QSize size = PillPainter::size(content);
    const int left = m_chips.empty() ? 0 : m_width + spacing;
    m_chips.push_back({content, left, size.width()});
    m_width = left + size.width();
    m_height = size.height();
  }
}

void HashtagChips::paint(QPainter& painter, const QRect& area, int offset, const QPalette& palette,
                         const QColor& ground) const {
  painter.save();
  painter.setClipRect(area, Qt::IntersectClip);
  for (const auto& [content, left, width] : m_chips) {
    const QRect rect(area.left() + left - offset, area.top(), width, m_height);
    if (rect.left() > area.right())
      break;
    if (rect.intersects(area))
      PillPainter::paint(painter, rect, content, palette);
  }
  if (offset > 0)
    fade(painter, area, true, ground);
  if (offset < furthest(area.width()))
    fade(painter, area, false, ground);
  painter.restore();
}

QString HashtagChips::accessibleText() const {
  QStringList names;
  for (const Chip& chip : m_chips)
    names.append(QLatin1Char('#') + chip.content.tag);
  return names.join(QStringLiteral(", "));
}

HashtagStrip::HashtagStrip(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void HashtagStrip::setHashtags(const WordList& hashtags) {
  m_chips = HashtagChips(hashtags);
  m_offset = 0;
  setAccessibleName(m_chips.accessibleText());
  updateGeometry();
  update();
}

void HashtagStrip::setOffset(int offset) {
  m_offset = std::clamp(offset, 0, m_chips.furthest(width()));
  update();
}

void HashtagStrip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  m_chips.paint(painter, rect(), m_offset, palette(), palette().color(ThemeRole::surface));
}

void HashtagStrip::resizeEvent(QResizeEvent*) {
  setOffset(m_offset);
}

void HashtagStrip::wheelEvent(QWheelEvent* event) {
  const QPoint turned = event->pixelDelta().isNull() ? event->angleDelta() / 2 : event->pixelDelta();
  const bool isSideways = event->modifiers() & Qt::ShiftModifier;
  const int sideways = isSideways ? turned.y() : turned.x();
  if (sideways == 0)
    return event->ignore(); // The list's.
  setOffset(m_offset - sideways);
  event->accept();
}

void HashtagStrip::mousePressEvent(QMouseEvent* event) {
  m_draggedFrom = event->position().toPoint().x() + m_offset;
  event->ignore(); // It may become a click on the row.
}

void HashtagStrip::mouseMoveEvent(QMouseEvent* event) {
  setOffset(m_draggedFrom - event->position().toPoint().x());
  event->ignore();
}

} // namespace notlet
