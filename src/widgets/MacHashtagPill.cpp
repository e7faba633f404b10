#include "widgets/MacHashtagPill.h"

#include <QFontMetrics>
#include <QPainter>
#include <QtMath>

#include "core/HashtagColor.h"
#include "widgets/SymbolIcon.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"
#include "widgets/ThemedButton.h"

namespace notlet {

namespace {

constexpr int checkmarkGap = 4;

Rgb rgbOf(const QColor& color) {
  return {static_cast<std::uint8_t>(color.red()), static_cast<std::uint8_t>(color.green()),
          static_cast<std::uint8_t>(color.blue())};
}

QFont fontOf(const PillContent& content) {
  return content.isLarge ? textFont(TextStyle::subheadline, QFont::DemiBold)
                         : textFont(TextStyle::caption, QFont::Medium);
}

int sidePadding(const PillContent& content) {
  return content.isLarge ? 14 : 8;
}

int padding(const PillContent& content) {
  return content.isLarge ? 7 : 3;
}

bool showsCheckmark(const PillContent& content) {
  return content.isSelected == true;
}

int checkmarkSide(const PillContent& content) {
  return QFontMetrics(textFont(content.isLarge ? TextStyle::caption : TextStyle::caption2)).ascent();
}

QString textOf(const PillContent& content) {
  return QLatin1Char('#') + content.tag;
}

/// Without a line an unselected filter is lost where surface and background are alike.
QPen penOf(const PillContent& content, const QPalette& palette) {
  if (content.isOutlined)
    return QPen(palette.color(ThemeRole::outline), 1);
  if (content.isSelected == false)
    return QPen(palette.color(ThemeRole::separator), 1);
  return Qt::NoPen;
}

void paintCapsule(QPainter& painter, const QRectF& rect, const PillContent& content,
                  const QPalette& palette) {
  if (content.isFocused)
    ThemedButton::paintFocusRing(painter, rect, rect.height() / 2, palette);
  const double inset = content.isFocused ? ThemedButton::ringInset : 0.5;
  const QRectF capsule = rect.adjusted(inset, inset, -inset, -inset);
  painter.setPen(content.isFocused ? QPen(Qt::NoPen) : penOf(content, palette));
  painter.setBrush(PillPainter::fillColor(content, palette));
  painter.drawRoundedRect(capsule, capsule.height() / 2, capsule.height() / 2);
}

} // namespace

QSize PillPainter::size(const PillContent& content) {
  // Rounded up, since a fraction of a pixel too few would elide the tag.
  const QFontMetricsF metrics(fontOf(content));
  const int checkmarkWidth = showsCheckmark(content) ? checkmarkSide(content) + checkmarkGap : 0;
  return {checkmarkWidth + qCeil(metrics.horizontalAdvance(textOf(content))) + 1 + 2 * sidePadding(content),
          qCeil(metrics.height()) + 2 * padding(content)};
}

void PillPainter::paint(QPainter& painter, const QRect& rect, const PillContent& content,
                        const QPalette& palette) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  paintCapsule(painter, rect, content, palette);
  QRect inside = rect.adjusted(sidePadding(content), 0, -sidePadding(content), 0);
  painter.setPen(textColor(content, palette));
  if (showsCheckmark(content)) {
    const int side = checkmarkSide(content);
    const QRect checkmark(inside.left(), inside.top() + (inside.height() - side) / 2, side, side);
    paintSymbol(painter, Symbol::checkmark, checkmark, textColor(content, palette));
    inside.setLeft(inside.left() + side + checkmarkGap);
  }
  painter.setFont(fontOf(content));
  const QString text =
      QFontMetrics(painter.font()).elidedText(textOf(content), Qt::ElideRight, inside.width());
  painter.drawText(inside, Qt::AlignCenter | Qt::TextSingleLine, text);
  painter.restore();
}

QColor PillPainter::tagColor(const QString& tag, const QPalette& palette) {
  const Rgb color = HashtagColor::color(tag.toStdString(), rgbOf(palette.color(ThemeRole::accent)),
                                        rgbOf(palette.color(ThemeRole::alternateAccent)));
  return {color.red, color.green, color.blue};
}

QColor PillPainter::fillColor(const PillContent& content, const QPalette& palette) {
  if (content.isSelected == false)
    return palette.color(content.isPressed   ? ThemeRole::pressed
                         : content.isHovered ? ThemeRole::hover
                                             : ThemeRole::surface);
  const QColor tag = tagColor(content.tag, palette);
  if (!content.isPressed && !content.isHovered)
    return tag;
  return touchedGround(tag, textColor(content, palette), content.isPressed ? 0.25 : 0.12);
}

QColor PillPainter::textColor(const PillContent& content, const QPalette& palette) {
  // What can be pressed comes forward under the pointer.
  if (content.isSelected == false)
    return palette.color(content.isPressed || content.isHovered ? ThemeRole::primaryText
                                                                : ThemeRole::secondaryText);
  // White cannot be read on an accent of middling brightness, and the accents stay as the theme has them.
  const QColor tag = tagColor(content.tag, palette);
  const Rgb usual = HashtagColor::contrastingText(rgbOf(tag));
  const QColor text(usual.red, usual.green, usual.blue);
  return contrastRatio(text, tag) >= Contrast::text ? text : strongestOn(tag);
}

MacHashtagPill::MacHashtagPill(PillContent content, QWidget* parent)
    : QWidget(parent), m_content(std::move(content)) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
  setAccessibleName(textOf(m_content));
}

void MacHashtagPill::setContent(const PillContent& content) {
  if (content == m_content)
    return;
  m_content = content;
  setAccessibleName(textOf(m_content));
  updateGeometry();
  update();
}

void MacHashtagPill::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  PillPainter::paint(painter, rect(), m_content, palette());
}

} // namespace notlet
