#include "widgets/AppThemeContainer.h"

#include <QApplication>
#include <QToolTip>
#include <QVBoxLayout>

#include "themes/AppThemeCatalog.h"
#include "widgets/ThemePalette.h"

namespace notlet {

AppThemeContainer::AppThemeContainer(AppSettings& settings, QWidget* content, QWidget* parent)
    : QWidget(parent), m_settings(settings), m_content(content) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->addWidget(content);
  setAutoFillBackground(true);
  applyTheme();
  connect(&m_settings, &AppSettings::themeChanged, this, &AppThemeContainer::applyTheme);
  qApp->installEventFilter(this);
}

const AppThemeContainer* AppThemeContainer::around(const QWidget* widget) {
  for (; widget; widget = widget->parentWidget())
    if (const auto* container = qobject_cast<const AppThemeContainer*>(widget))
      return container;
  return nullptr;
}

const AppTheme& AppThemeContainer::themeOf(const QWidget* widget) {
  const AppThemeContainer* container = around(widget);
  return container ? container->theme() : AppThemeCatalog::themes().front();
}

bool AppThemeContainer::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Polish && watched->isWidgetType())
    adopt(static_cast<QWidget*>(watched));
  else if (event->type() == QEvent::ApplicationPaletteChange && watched == qApp && theme().followsSystem)
    applyTheme();
  return QWidget::eventFilter(watched, event);
}

// Dialogs and menus are windows and would show the desktop's palette instead of that of the widget they
// belong to. A list of completions has no parent at all.
void AppThemeContainer::adopt(QWidget* widget) {
  if (!widget->isWindow())
    return;
  if (around(widget->parentWidget()) == this)
    widget->setAttribute(Qt::WA_WindowPropagation);
  else if (widget->windowType() == Qt::Popup && around(widget->focusProxy()) == this)
    widget->setPalette(palette());
}

void AppThemeContainer::applyTheme() {
  const QPalette palette = themePalette(theme(), QGuiApplication::palette());
  setPalette(palette);
  QToolTip::setPalette(palette);
}

} // namespace notlet
