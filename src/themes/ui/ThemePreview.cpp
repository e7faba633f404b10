#include "themes/ui/ThemePreview.h"

#include <QPainter>
#include <QPainterPath>

#include "core/HashtagColor.h"
#include "themes/ui/ThemeRows.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr double radius = 12;
constexpr int padding = 16;
constexpr int spacing = 8;
constexpr int chipPadding = 7;

int lineHeight(TextStyle style) {
  return QFontMetrics(textFont(style)).height();
}

int chipHeight() {
  return lineHeight(TextStyle::caption) + 2 * chipPadding;
}

/// Paints a chip with its left edge at `position` and gives where it ends.
int paintChip(QPainter& painter, QPoint position, const QString& text, std::string_view code) {
  const Rgb fill = Rgb::fromHex(code);
  const Rgb ink = HashtagColor::contrastingText(fill);
  painter.setFont(textFont(TextStyle::caption, QFont::Medium));
  const int width = painter.fontMetrics().horizontalAdvance(text) + 2 * (chipPadding + 3);
  const QRect chip(position, QSize(width, chipHeight()));
  painter.setPen(Qt::NoPen);
  painter.setBrush(colorFromHex(code));
  painter.drawRoundedRect(chip, chipHeight() / 2.0, chipHeight() / 2.0);
  painter.setPen(QColor(ink.red, ink.green, ink.blue));
  painter.drawText(chip, Qt::AlignCenter, text);
  return position.x() + width;
}

} // namespace

ThemePreview::ThemePreview(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ThemePreview::setTheme(const AppTheme& theme) {
  m_theme = theme;
  setAccessibleName(tr("Preview of %1").arg(shownName(theme)));
  update();
}

QSize ThemePreview::sizeHint() const {
  return {280, 2 * padding + lineHeight(TextStyle::headline) + lineHeight(TextStyle::body) + 4 + spacing +
                   chipHeight()};
}

void ThemePreview::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  // The card may have the colour of what it lies on.
  painter.setPen(QPen(palette().color(ThemeRole::separator), 1));
  painter.setBrush(colorFromHex(m_theme.backgroundHex));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);

  QRect line = rect().adjusted(padding, padding, -padding, -padding);
  const auto paintLine = [&](const QString& text, TextStyle style, std::string_view code) {
    painter.setFont(textFont(style));
    painter.setPen(colorFromHex(code));
    line.setHeight(lineHeight(style));
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(text, Qt::ElideRight, line.width()));
    line.translate(0, line.height() + 4);
  };
  paintLine(shownName(m_theme), TextStyle::headline, m_theme.primaryHex);
  paintLine(tr("A live preview of your custom theme."), TextStyle::body, m_theme.secondaryHex);
  const QPoint chips = line.topLeft() + QPoint(0, spacing - 4);
  const int end = paintChip(painter, chips, tr("Accent"), m_theme.accentHex);
  paintChip(painter, QPoint(end + spacing, chips.y()), tr("Alternate"), m_theme.alternateAccentHex);
}

} // namespace notlet
