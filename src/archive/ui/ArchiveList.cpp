#include "archive/ui/ArchiveList.h"

#include <QApplication>
#include <QFocusEvent>
#include <QVBoxLayout>

#include "archive/ui/MacArchiveRowWidget.h"

namespace notlet {

ArchiveList::ArchiveList(ArchiveBrowser& browser, QWidget* parent)
    : QWidget(parent), m_browser(browser), m_rows(browser, *this), m_view(new VirtualListView(m_rows)) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_view);
  setFocusProxy(m_view);
  m_view->setAccessibleName(QStringLiteral("Notlets"));
  m_view->installEventFilter(this);
  connect(&m_browser, &ArchiveBrowser::changed, this, &ArchiveList::render);
  connect(&m_browser, &ArchiveBrowser::resultsChanged, this, &ArchiveList::follow);
  connect(m_view, &VirtualListView::rowClicked, this,
          [this](std::size_t row) { m_browser.select(m_browser.resultAt(row).id); });
  connect(m_view, &VirtualListView::sidewaysScrolled, this,
          [this](std::size_t row, const QPoint& position, int pixels) {
            if (m_rows.scrollChips(row, position, pixels))
              m_view->viewport()->update();
          });
  connect(m_view, &VirtualListView::focusChanged, this, [this](bool hasFocus) {
    if (m_activeRow)
      m_activeRow->setHighlighted(hasFocus);
  });
  m_view->rowsReset();
  render();
}

void ArchiveList::follow(const ListChange& change) {
  switch (change.kind) {
  case ListChange::Kind::Inserted:
  case ListChange::Kind::Appended:
    m_view->rowsInserted(change.first, change.count);
    break;
  case ListChange::Kind::Removed:
    m_view->rowsRemoved(change.first, change.count);
    break;
  case ListChange::Kind::Updated:
    for (std::size_t row = change.first; row < change.first + change.count; ++row) {
      const NotletEntry& notlet = m_browser.resultAt(row);
      m_rows.forget(notlet.id);
      if (m_activeRow && notlet.id == m_activeID)
        m_activeRow->setNotlet(notlet);
    }
    m_view->rowsUpdated(change.first, change.count);
    break;
  case ListChange::Kind::Reset:
    followReset();
    break;
  }
  render();
}

/// The active row stays where it is, if it was in sight; else the new results are shown from their beginning.
void ArchiveList::followReset() {
  m_rows.forgetAll();
  const auto row = m_activeID ? m_browser.resultIndexOf(*m_activeID) : std::nullopt;
  const auto widgetRow = m_view->widgetRow();
  const auto rect = widgetRow ? m_view->rowRect(*widgetRow) : std::nullopt;
  if (row && m_activeRow)
    m_activeRow->setNotlet(m_browser.resultAt(*row));
  if (row && rect)
    m_view->rowsReset({*row, rect->top()}, row);
  else
    m_view->rowsReset({}, row);
}

void ArchiveList::render() {
  const auto& selected = m_browser.state().selectedID;
  const auto row = selected ? m_browser.resultIndexOf(*selected) : std::nullopt;
  m_view->setCurrentRow(row);
  if (row) {
    renderActiveRow(*row, m_browser.resultAt(*row));
    if (selected != m_shownSelection)
      m_view->scrollToCentre(*row, true);
  } else {
    m_view->clearRowWidget();
    m_activeID.reset();
  }
  m_shownSelection = selected;
  m_shownEdit = m_browser.state().editingID;
}

void ArchiveList::renderActiveRow(std::size_t row, const NotletEntry& notlet) {
  const bool isEditing = m_browser.state().editingID == notlet.id;
  const bool isNew = !m_activeRow || m_view->rowWidget() != m_activeRow;
  if (isNew)
    m_activeRow = makeActiveRow();
  const bool isOther = isNew || m_activeID != notlet.id;
  if (isOther || isEditing != m_activeRow->isEditing())
    takeKeyboardFromRow();
  if (isOther) {
    m_activeID = notlet.id;
    m_activeRow->showText(false); // An editor that opens for another notlet takes the keyboard anew.
    m_activeRow->setNotlet(notlet);
  }
  const bool opens = isEditing && !m_activeRow->isEditing();
  renderContent(notlet);
  if (isOther || m_view->widgetRow() != row)
    m_view->setRowWidget(row, m_activeRow);
  if (isNew)
    m_activeRow->orderAfter(m_view);
  if (!opens)
    return;
  m_view->scrollIntoView(row, QRect(QPoint(), m_activeRow->size()));
  // An editor that only comes back, because a filter admits its notlet again, takes it from no other field.
  if (m_shownEdit != notlet.id || m_view->hasFocus())
    m_activeRow->focusEditorNextTurn();
}

void ArchiveList::renderContent(const NotletEntry& notlet) {
  const auto& state = m_browser.state();
  if (state.editingID == notlet.id)
    m_activeRow->showEditor({state.editDraft, m_browser.suggestions(), m_browser.editNotice()});
  else
    m_activeRow->showText(m_browser.hasUnsavedEdit(notlet.id));
}

MacArchiveRowWidget* ArchiveList::makeActiveRow() {
  auto* row = new MacArchiveRowWidget;
  row->setPageHeight(m_view->viewport()->height());
  row->setHighlighted(m_view->hasFocus());
  const auto onNotlet = [this](void (ArchiveBrowser::*action)(const Uuid&)) {
    return [this, action] {
      if (m_activeID)
        (m_browser.*action)(Uuid(*m_activeID));
    };
  };
  for (QWidget* control : row->findChildren<QWidget*>())
    control->installEventFilter(this);
  connect(row, &MacArchiveRowWidget::clicked, this, onNotlet(&ArchiveBrowser::select));
  connect(row, &MacArchiveRowWidget::editRequested, this, onNotlet(&ArchiveBrowser::beginEditing));
  connect(row, &MacArchiveRowWidget::deleteRequested, this, onNotlet(&ArchiveBrowser::requestDeletion));
  connect(row, &MacArchiveRowWidget::restoreRequested, this, onNotlet(&ArchiveBrowser::restoreUnsavedEdit));
  connect(row, &MacArchiveRowWidget::saveRequested, this, onNotlet(&ArchiveBrowser::saveEdit));
  connect(row, &MacArchiveRowWidget::cancelRequested, &m_browser, &ArchiveBrowser::cancelEditing);
  connect(row, &MacArchiveRowWidget::draftChanged, &m_browser, &ArchiveBrowser::setEditDraft);
  connect(row, &MacArchiveRowWidget::suggestionChosen, this, [this](const std::string& tag) {
    m_browser.acceptSuggestion(tag);
    if (m_activeRow)
      m_activeRow->focusEditor();
  });
  connect(row, &MacArchiveRowWidget::caretMoved, this, [this](const QRect& part) {
    if (const auto widgetRow = m_view->widgetRow())
      m_view->scrollIntoView(*widgetRow, part);
  });
  return row;
}

bool ArchiveList::eventFilter(QObject* watched, QEvent* event) {
  // Suggestions come and go.
  if (event->type() == QEvent::ChildAdded)
    static_cast<QChildEvent*>(event)->child()->installEventFilter(this);
  if (event->type() == QEvent::FocusIn) {
    const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
    const bool isByTab = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
    if (isByTab)
      showControl(qobject_cast<QWidget*>(watched));
    if (isByTab || reason == Qt::MouseFocusReason)
      Q_EMIT entered();
  }
  return QWidget::eventFilter(watched, event);
}

void ArchiveList::showControl(const QWidget* control) {
  const auto row = m_view->widgetRow();
  if (row && m_activeRow && m_activeRow->isAncestorOf(control))
    m_view->scrollIntoView(*row, m_activeRow->keyboardPart(control));
}

void ArchiveList::takeKeyboardFromRow() {
  if (m_activeRow && m_activeRow->isAncestorOf(QApplication::focusWidget()))
    m_view->setFocus(Qt::OtherFocusReason);
}

// The view shows the rows until its end: it even repaints when it loses the keyboard by being deleted.
ArchiveList::~ArchiveList() {
  delete m_view;
}

void ArchiveList::resizeEvent(QResizeEvent*) {
  if (m_activeRow)
    m_activeRow->setPageHeight(m_view->viewport()->height());
}

void ArchiveList::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::LocaleChange) {
    m_rows.forgetAll();
    m_view->remeasure();
  }
}

} // namespace notlet
