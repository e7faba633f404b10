#include "themes/ui/ThemeRows.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "widgets/SymbolIcon.h"
#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int margin = 16;
constexpr int inset = 8;
constexpr int padding = 6;
constexpr int spacing = 12;
constexpr QSize strip{18, 30};
constexpr int strips = 4;
constexpr double swatchRadius = 7;
constexpr double cardRadius = 10;
constexpr double activeRadius = 8;
constexpr double activeTint = 0.18;
constexpr double activeBorder = 2;
constexpr double outlineOpacity = 0.35;
/// Less contrast than this makes a border hard to see.
constexpr double visibleContrast = 3;
constexpr int checkSide = 20;
constexpr int headingAbove = 16;
constexpr int headingBelow = 6;
constexpr std::size_t longestName = 400;

/// The colours of a row's own theme.
struct Sample {
  QColor background;
  QColor surface;
  QColor secondary;
  QColor accent;
  QColor alternateAccent;
};

Sample sampleOf(const AppTheme& theme) {
  Sample sample{colorFromHex(theme.backgroundHex), colorFromHex(theme.surfaceHex),
                colorFromHex(theme.secondaryHex), colorFromHex(theme.accentHex),
                colorFromHex(theme.alternateAccentHex)};
  if (theme.followsSystem) {
    const QPalette desktop = QGuiApplication::palette();
    sample.background = desktop.color(QPalette::Window);
    sample.surface = desktop.color(QPalette::Base);
    sample.accent = desktop.color(QPalette::Highlight);
  }
  return sample;
}

QColor faded(QColor color, double opacity) {
  color.setAlphaF(static_cast<float>(opacity));
  return color;
}

void paintSwatch(QPainter& painter, const QRect& rect, const Sample& sample) {
  QPainterPath outline;
  outline.addRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), swatchRadius, swatchRadius);
  painter.save();
  painter.setClipPath(outline);
  QRect part(rect.topLeft(), strip);
  for (const QColor& color : {sample.background, sample.surface, sample.accent, sample.alternateAccent}) {
    painter.fillRect(part, color);
    part.translate(strip.width(), 0);
  }
  painter.restore();
  painter.strokePath(outline, QPen(faded(sample.secondary, outlineOpacity), 1));
}

/// A surface that is rounded where a group of rows begins or ends.
QPainterPath groupPart(const QRectF& rect, bool isFirst, bool isLast) {
  QPainterPath path;
  path.addRoundedRect(rect, cardRadius, cardRadius);
  path.setFillRule(Qt::WindingFill);
  if (!isFirst)
    path.addRect(rect.adjusted(0, 0, 0, -rect.height() / 2));
  if (!isLast)
    path.addRect(rect.adjusted(0, rect.height() / 2, 0, 0));
  return path;
}

QString brightness(const AppTheme& theme) {
  return theme.isDark ? QStringLiteral("Dark") : QStringLiteral("Light");
}

} // namespace

QString shownName(const AppTheme& theme) {
  const std::string_view name = theme.name;
  return fromUtf8(name.substr(0, longestName)).simplified();
}

ThemeRows::ThemeRows(const ThemeBrowser& browser, const QWidget& widget)
    : m_browser(browser), m_widget(widget) {
}

bool ThemeRows::refresh() {
  std::vector<Row> rows;
  for (const std::string& category : m_browser.categories()) {
    rows.push_back({.heading = category, .theme = {}});
    const std::size_t first = rows.size();
    for (const AppTheme& theme : m_browser.filteredThemes()) {
      if (theme.category == category)
        rows.push_back({.heading = {}, .theme = theme});
    }
    rows[first].isFirst = true;
    rows.back().isLast = true;
  }
  std::swap(rows, m_rows);
  return rows != m_rows;
}

const AppTheme* ThemeRows::themeAt(std::size_t row) const {
  return row < m_rows.size() && m_rows[row].heading.empty() ? &m_rows[row].theme : nullptr;
}

std::optional<std::size_t> ThemeRows::rowOf(const std::string& themeID) const {
  const auto found = std::ranges::find_if(
      m_rows, [&](const Row& row) { return row.heading.empty() && row.theme.id == themeID; });
  return found == m_rows.end() ? std::nullopt
                               : std::optional(static_cast<std::size_t>(found - m_rows.begin()));
}

bool ThemeRows::isSelected(const Row& row) const {
  return row.theme.id == m_browser.selectedThemeID();
}

int ThemeRows::height(std::size_t row, int) {
  const auto lineHeight = [](TextStyle style) { return QFontMetrics(textFont(style)).height(); };
  if (themeAt(row) == nullptr)
    return headingAbove + lineHeight(TextStyle::footnote) + headingBelow;
  const int texts = lineHeight(TextStyle::body) + lineHeight(TextStyle::caption);
  return std::max(strip.height(), texts) + 2 * padding;
}

void ThemeRows::paint(QPainter& painter, const QRect& rect, std::size_t row, const PaintState& state) {
  const Row& shown = m_rows[row];
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  if (themeAt(row) == nullptr) {
    paintHeading(painter, rect, shown);
    return painter.restore();
  }
  const QRect card = rect.adjusted(margin, 0, -margin, 0);
  paintGround(painter, card, shown, state);
  const QRect content = card.adjusted(inset + padding, padding, -inset - padding, -padding);
  QRect swatch(content.topLeft(), QSize(strips * strip.width(), strip.height()));
  swatch.moveTop(content.center().y() - strip.height() / 2);
  const Sample sample = sampleOf(shown.theme);
  paintSwatch(painter, swatch, sample);
  QRect check(0, 0, checkSide, checkSide);
  check.moveCenter(QPoint(content.right() - checkSide / 2, content.center().y()));
  if (isSelected(shown))
    paintSymbol(painter, Symbol::checkmarkCircleFill, check, sample.accent);
  const int left = swatch.right() + 1 + spacing;
  paintTexts(painter, QRect(left, content.top(), check.left() - spacing - left, content.height()),
             shown.theme);
  painter.restore();
}

void ThemeRows::paintHeading(QPainter& painter, const QRect& rect, const Row& row) const {
  const QFont font = textFont(TextStyle::footnote, QFont::DemiBold);
  const QRect line = rect.adjusted(margin + inset, headingAbove, -margin - inset, -headingBelow);
  painter.setFont(font);
  painter.setPen(m_widget.palette().color(ThemeRole::secondaryText));
  painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                   QFontMetrics(font).elidedText(fromUtf8(row.heading.substr(0, longestName)).simplified(),
                                                 Qt::ElideRight, line.width()));
}

void ThemeRows::paintGround(QPainter& painter, const QRect& card, const Row& row,
                            const PaintState& state) const {
  const QPalette& palette = m_widget.palette();
  painter.fillPath(groupPart(card, row.isFirst, row.isLast),
                   palette.color(state.isHovered ? ThemeRole::hover : ThemeRole::surface));
  if (!row.isLast)
    painter.fillRect(QRect(card.left() + inset + padding + strips * strip.width() + spacing, card.bottom(),
                           card.width() - inset - padding - strips * strip.width() - spacing, 1),
                     palette.color(ThemeRole::separator));
  if (!state.isCurrent)
    return;
  const QColor accent = sampleOf(row.theme).accent;
  const QRectF shape = QRectF(card).adjusted(3, 2, -3, -2);
  painter.setBrush(faded(accent, activeTint));
  painter.setPen(QPen(accent, activeBorder));
  painter.drawRoundedRect(shape, activeRadius, activeRadius);
  if (contrastRatio(accent, palette.color(ThemeRole::surface)) >= visibleContrast)
    return;
  // The accent of another theme may be lost on the surface of this one.
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(palette.color(ThemeRole::focusRing), 1));
  painter.drawRoundedRect(shape.adjusted(-1.5, -1.5, 1.5, 1.5), activeRadius + 1, activeRadius + 1);
}

void ThemeRows::paintTexts(QPainter& painter, const QRect& area, const AppTheme& theme) const {
  const QFont nameFont = textFont(TextStyle::body, QFont::Medium);
  const QFont captionFont = textFont(TextStyle::caption);
  const QFontMetrics nameMetrics(nameFont);
  const int height = nameMetrics.height() + QFontMetrics(captionFont).height();
  QRect line(area.left(), area.center().y() - height / 2, area.width(), nameMetrics.height());
  painter.setFont(nameFont);
  painter.setPen(m_widget.palette().color(ThemeRole::primaryText));
  painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                   nameMetrics.elidedText(shownName(theme), Qt::ElideRight, area.width()));
  line.translate(0, line.height());
  line.setHeight(QFontMetrics(captionFont).height());
  painter.setFont(captionFont);
  painter.setPen(m_widget.palette().color(ThemeRole::secondaryText));
  painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, brightness(theme));
}

QString ThemeRows::accessibleText(std::size_t row) const {
  const AppTheme* theme = themeAt(row);
  if (theme == nullptr)
    return fromUtf8(m_rows[row].heading);
  QStringList parts{shownName(*theme), brightness(*theme)};
  if (isSelected(m_rows[row]))
    parts.append(QStringLiteral("Selected"));
  return parts.join(QStringLiteral(", "));
}

} // namespace notlet
