#include "archive/ui/ArchivePlaceholder.h"

#include <QVBoxLayout>

#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int iconSide = 40;

QLabel* centredLabel(const QFont& font, QPalette::ColorRole role) {
  auto* label = new QLabel;
  label->setTextFormat(Qt::PlainText);
  label->setFont(font);
  label->setForegroundRole(role);
  label->setAlignment(Qt::AlignCenter);
  label->setWordWrap(true);
  return label;
}

} // namespace

ArchivePlaceholder::ArchivePlaceholder(QWidget* parent)
    : QWidget(parent),
      m_icon(new SymbolIcon(Symbol::magnifyingglass, iconSide, ThemeRole::secondaryText)),
      m_title(centredLabel(textFont(TextStyle::title, QFont::DemiBold), ThemeRole::primaryText)),
      m_description(centredLabel(textFont(TextStyle::body), ThemeRole::secondaryText)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(24, 24, 24, 24);
  column->setSpacing(0);
  column->addStretch();
  column->addWidget(m_icon, 0, Qt::AlignCenter);
  column->addSpacing(16);
  column->addWidget(m_title);
  column->addSpacing(8);
  column->addWidget(m_description);
  column->addStretch();
}

void ArchivePlaceholder::setContent(Symbol symbol, const QString& title, const QString& description) {
  m_icon->setSymbol(symbol);
  m_title->setText(title);
  m_description->setText(description);
}

} // namespace notlet
