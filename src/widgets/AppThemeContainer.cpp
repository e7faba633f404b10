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

const AppTheme& AppThemeContainer::themeOf(const QWidget* widget) {
  for (; widget; widget = widget->parentWidget())
    if (const auto* container = qobject_cast<const AppThemeContainer*>(widget))
      return container->theme();
  return AppThemeCatalog::themes().front();
}

// Dialogs and menus are windows and would show the desktop's palette instead of that of the widget they
// belong to.
bool AppThemeContainer::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Polish && watched->isWidgetType()) {
    auto* widget = static_cast<QWidget*>(watched);
    const QWidget* owner = widget->isWindow() ? widget->parentWidget() : nullptr;
    if (owner && (owner == this || isAncestorOf(owner)))
      widget->setAttribute(Qt::WA_WindowPropagation);
  }
  return QWidget::eventFilter(watched, event);
}

bool AppThemeContainer::event(QEvent* event) {
  if (event->type() == QEvent::ApplicationPaletteChange && theme().followsSystem)
    applyTheme();
  return QWidget::event(event);
}

void AppThemeContainer::applyTheme() {
  const QPalette palette = themePalette(theme(), QGuiApplication::palette());
  setPalette(palette);
  QToolTip::setPalette(palette);
}

} // namespace notlet
