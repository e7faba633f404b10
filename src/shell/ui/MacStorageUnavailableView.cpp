#include "shell/ui/MacStorageUnavailableView.h"

#include <QLabel>
#include <QVBoxLayout>

#include "widgets/SymbolIcon.h"
#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int iconSide = 44;
constexpr int textWidth = 420;
constexpr int narrowestText = 310;

QLabel* centredLabel(const QString& text, const QFont& font, QPalette::ColorRole role) {
  auto* label = new QLabel(breakable(text, QFontMetrics(font), narrowestText));
  label->setAccessibleName(text);
  label->setTextFormat(Qt::PlainText);
  label->setFont(font);
  label->setForegroundRole(role);
  label->setAlignment(Qt::AlignCenter);
  label->setWordWrap(true);
  label->setMaximumWidth(textWidth);
  return label;
}

} // namespace

MacStorageUnavailableView::MacStorageUnavailableView(const std::optional<std::string>& errorDescription,
                                                     QWidget* parent)
    : QWidget(parent) {
  setMinimumSize(380, 260);
  const QString description =
      errorDescription ? fromUtf8(*errorDescription) : QStringLiteral("Restart Notlet and try again.");
  auto* title = centredLabel(QStringLiteral("Notlet storage is unavailable"),
                             textFont(TextStyle::title, QFont::DemiBold), ThemeRole::primaryText);
  auto* text = centredLabel(description, textFont(TextStyle::body), ThemeRole::secondaryText);
  // Whoever asks for help has to quote it.
  text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(24, 24, 24, 24);
  column->setSpacing(0);
  column->addStretch();
  column->addWidget(
      new SymbolIcon(Symbol::externaldriveBadgeExclamationmark, iconSide, ThemeRole::secondaryText), 0,
      Qt::AlignCenter);
  column->addSpacing(16);
  for (QLabel* label : {title, text}) {
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(label, textWidth);
    row->addStretch();
    column->addLayout(row);
    column->addSpacing(label == title ? 8 : 0);
  }
  column->addStretch();
}

} // namespace notlet
