#include "themes/ui/PlainThemeList.h"

#include <QKeyEvent>

#include "themes/AppThemeCatalog.h"
#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int rowHeight = 32;
constexpr int identifierRole = Qt::UserRole;

} // namespace

PlainThemeList::PlainThemeList(AppSettings& settings, QWidget* parent)
    : QListWidget(parent), m_settings(settings) {
  setAccessibleName(QStringLiteral("Themes"));
  setFrameShape(QFrame::NoFrame);
  setFont(textFont(TextStyle::body));
  viewport()->setAutoFillBackground(false); // The window's background shows through.
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollMode(ScrollPerPixel);
  fill();
  connect(this, &QListWidget::itemClicked, this, &PlainThemeList::apply);
}

void PlainThemeList::fill() {
  const auto add = [this](const AppTheme& theme) {
    auto* item = new QListWidgetItem(fromUtf8(theme.name), this);
    item->setData(identifierRole, fromUtf8(theme.id));
    item->setToolTip(fromUtf8(theme.category));
    item->setSizeHint(QSize(0, rowHeight));
    if (theme.id == m_settings.selectedThemeID())
      setCurrentItem(item);
  };
  for (const AppTheme& theme : AppThemeCatalog::themes())
    add(theme);
  for (const AppTheme& theme : m_settings.customThemes())
    add(theme);
  if (currentItem() != nullptr)
    scrollToItem(currentItem(), PositionAtCenter);
}

void PlainThemeList::keyPressEvent(QKeyEvent* event) {
  if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentItem() != nullptr)
    apply(currentItem());
  else
    QListWidget::keyPressEvent(event);
}

void PlainThemeList::apply(QListWidgetItem* item) {
  m_settings.setSelectedThemeID(toUtf8(item->data(identifierRole).toString()));
}

} // namespace notlet
