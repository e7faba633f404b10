#include "shortcuts/ui/MacSettingsView.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>

#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int padding = 20;
constexpr int symbolSide = 18;
constexpr int symbolGap = 8;
constexpr QSize tabPadding{14, 8};
constexpr double radius = 9;

} // namespace

SettingsTabButton::SettingsTabButton(Symbol symbol, const QString& title, QWidget* parent)
    : ThemedButton(parent), m_symbol(symbol) {
  setText(title);
  setFont(textFont(TextStyle::body, QFont::Medium));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SettingsTabButton::setSelected(bool isSelected) {
  m_isSelected = isSelected;
  setAccessibleDescription(isSelected ? QStringLiteral("Current tab") : QString());
  update();
}

QSize SettingsTabButton::sizeHint() const {
  const int textWidth = fontMetrics().horizontalAdvance(text());
  return {symbolSide + symbolGap + textWidth + 2 * tabPadding.width(),
          std::max(symbolSide, fontMetrics().height()) + 2 * tabPadding.height()};
}

void SettingsTabButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  prepare(painter);
  QColor tint = palette().color(ThemeRole::accent);
  tint.setAlphaF(static_cast<float>(selectedTint));
  painter.setPen(Qt::NoPen);
  painter.setBrush(m_isSelected ? QBrush(tint) : quietGround());
  painter.drawRoundedRect(rect(), radius, radius);
  if (hasFocus())
    paintFocusRing(painter, rect(), radius, palette());
  const QColor color = palette().color(m_isSelected ? ThemeRole::primaryText : ThemeRole::secondaryText);
  const QRect content = rect().adjusted(tabPadding.width(), 0, -tabPadding.width(), 0);
  QRect symbol(content.left(), (height() - symbolSide) / 2, symbolSide, symbolSide);
  paintSymbol(painter, m_symbol, QStyle::visualRect(layoutDirection(), content, symbol), color);
  painter.setPen(color);
  painter.drawText(
      QStyle::visualRect(layoutDirection(), content, content.adjusted(symbolSide + symbolGap, 0, 0, 0)),
      Qt::AlignCenter | Qt::TextSingleLine, text());
}

MacSettingsView::MacSettingsView(SettingsScreen& screen, QWidget* themes, QWidget* shortcuts, QWidget* parent)
    : QWidget(parent),
      m_screen(screen),
      m_pages(new QStackedWidget),
      m_tabs{new SettingsTabButton(Symbol::paintpalette, QStringLiteral("Themes")),
             new SettingsTabButton(Symbol::keyboard, QStringLiteral("Shortcuts"))} {
  using Tab = SettingsScreen::Tab;
  auto* strip = new QHBoxLayout;
  strip->setContentsMargins(padding, padding, padding, 0);
  strip->setSpacing(8);
  strip->addStretch();
  for (const Tab tab : {Tab::themes, Tab::shortcuts}) {
    SettingsTabButton* button = m_tabs[static_cast<std::size_t>(tab)];
    strip->addWidget(button);
    connect(button, &SettingsTabButton::clicked, &m_screen, [this, tab] { m_screen.select(tab); });
  }
  strip->addStretch();
  m_pages->addWidget(themes);
  m_pages->addWidget(shortcuts);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins({});
  column->setSpacing(12);
  column->addLayout(strip);
  column->addWidget(m_pages, 1);
  connect(&m_screen, &SettingsScreen::changed, this, &MacSettingsView::render);
  render();
}

void MacSettingsView::render() {
  const auto shown = static_cast<std::size_t>(m_screen.state().tab);
  m_pages->setCurrentIndex(static_cast<int>(shown));
  for (std::size_t index = 0; index < m_tabs.size(); ++index)
    m_tabs[index]->setSelected(index == shown);
}

} // namespace notlet
