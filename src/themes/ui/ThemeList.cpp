#include "themes/ui/ThemeList.h"

#include <QContextMenuEvent>
#include <QVBoxLayout>

#include "widgets/SymbolIcon.h"
#include "widgets/ThemePalette.h"

namespace notlet {

ThemeList::ThemeList(ThemeBrowser& browser, QWidget* parent)
    : QWidget(parent), m_browser(browser), m_rows(browser, *this), m_view(new VirtualListView(m_rows)) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_view);
  setFocusProxy(m_view);
  m_view->setAccessibleName(QStringLiteral("Themes"));
  connect(&m_browser, &ThemeBrowser::changed, this, &ThemeList::render);
  connect(m_view, &VirtualListView::rowClicked, this, [this](std::size_t row) {
    if (const AppTheme* theme = m_rows.themeAt(row))
      m_browser.select(theme->id);
  });
  render();
}

// The view shows the rows until its end.
ThemeList::~ThemeList() {
  delete m_view;
}

void ThemeList::render() {
  renderRows();
  const auto& active = m_browser.state().activeThemeID;
  const auto row = active ? m_rows.rowOf(*active) : std::nullopt;
  m_view->setCurrentRow(row);
  if (row && active != m_shownActive)
    m_view->scrollToCentre(*row, true);
  m_shownActive = active;
  m_view->viewport()->update(); // The check mark may be elsewhere.
}

/// Another search starts at the top; a theme that comes, changes or goes leaves the list where it is.
void ThemeList::renderRows() {
  const bool isOtherSearch = m_shownSearch != m_browser.state().searchText;
  m_shownSearch = m_browser.state().searchText;
  if (!m_rows.refresh())
    return;
  const auto& visible = m_view->visibleRows();
  if (isOtherSearch || visible.empty())
    m_view->rowsReset();
  else
    m_view->rowsReset({visible.front().row, visible.front().rect.top()}, std::nullopt);
}

void ThemeList::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  // Once the list has its size.
  if (!std::exchange(m_wasShown, true))
    QMetaObject::invokeMethod(this, &ThemeList::showSelected, Qt::QueuedConnection);
}

void ThemeList::showSelected() {
  const auto row = m_rows.rowOf(m_browser.selectedThemeID());
  if (!row || m_browser.state().activeThemeID)
    return;
  const auto rect = m_view->rowRect(*row);
  if (!rect || !m_view->viewport()->rect().contains(*rect))
    m_view->scrollToCentre(*row, false);
}

void ThemeList::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange)
    m_view->remeasure();
}

void ThemeList::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() == QContextMenuEvent::Keyboard)
    return openMenuOfActiveRow();
  if (const auto row = m_view->rowAt(m_view->viewport()->mapFromGlobal(event->globalPos())))
    openMenu(*row, event->globalPos());
}

void ThemeList::openMenuOfActiveRow() {
  const auto row = m_view->currentRow();
  const auto rect = row ? m_view->rowRect(*row) : std::nullopt;
  if (rect)
    openMenu(*row, m_view->viewport()->mapToGlobal(rect->center()));
}

void ThemeList::openMenu(std::size_t row, const QPoint& globalPosition) {
  const AppTheme* shown = m_rows.themeAt(row);
  if (m_menu || shown == nullptr || !ThemeBrowser::isCustom(*shown))
    return;
  const AppTheme theme = *shown; // The rows may be others by the time that an action is chosen.
  m_menu = new QMenu(this);
  m_menu->setAttribute(Qt::WA_DeleteOnClose);
  connect(m_menu->addAction(symbolQIcon(Symbol::pencil, palette().color(ThemeRole::primaryText)), tr("Edit")),
          &QAction::triggered, &m_browser, [this, theme] { m_browser.beginEditing(theme); });
  connect(m_menu->addAction(symbolQIcon(Symbol::trash, destructiveColor(palette())), tr("Delete")),
          &QAction::triggered, &m_browser, [this, theme] { m_browser.deleteTheme(theme); });
  m_menu->popup(globalPosition);
}

} // namespace notlet
