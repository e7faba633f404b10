#include "themes/ui/ThemeSettingsView.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QVBoxLayout>

#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int margin = 16;
constexpr int spacing = 8;

QLabel* makeLabel(const QString& text, TextStyle style, QPalette::ColorRole role) {
  auto* label = new QLabel(text);
  label->setFont(textFont(style));
  label->setForegroundRole(role);
  label->setWordWrap(true);
  return label;
}

/// What the rules call the key; empty for one that means nothing to them.
std::string keyName(const QKeyEvent& event) {
  if (event.text() == QLatin1String("/") &&
      !(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)))
    return "/";
  if (event.modifiers() & ~Qt::KeypadModifier)
    return {};
  switch (event.key()) {
  case Qt::Key_Down:
    return "down";
  case Qt::Key_Up:
    return "up";
  case Qt::Key_Return:
  case Qt::Key_Enter:
    return "return";
  case Qt::Key_Escape:
    return "escape";
  default:
    return {};
  }
}

} // namespace

ThemeSettingsView::ThemeSettingsView(const ThemeBrowser::Surroundings& surroundings, QWidget* parent)
    : QWidget(parent),
      m_browser(surroundings),
      m_search(new SearchField(tr("Search themes"), tr("Clear theme search"))),
      m_options(new IconButton(Symbol::ellipsisCircle, tr("Theme options"))),
      m_list(new ThemeList(m_browser)),
      m_nothingFound(
          makeLabel(tr("No theme matches your search."), TextStyle::body, ThemeRole::secondaryText)) {
  setAccessibleName(tr("Themes"));
  m_nothingFound->setAlignment(Qt::AlignCenter);
  layOut();
  connectHandlers();
  render();
}

void ThemeSettingsView::layOut() {
  auto* head = new QHBoxLayout;
  head->addWidget(makeLabel(tr("Themes"), TextStyle::title, ThemeRole::primaryText), 1);
  head->addWidget(m_options);
  auto* controls = new QVBoxLayout;
  controls->setContentsMargins(margin, margin, margin, spacing + 4);
  controls->setSpacing(spacing + 4);
  controls->addLayout(head);
  controls->addWidget(m_search);
  controls->addWidget(
      makeLabel(tr("Choose a theme to preview it instantly. Your selection is saved automatically."),
                TextStyle::footnote, ThemeRole::secondaryText));

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addLayout(controls);
  column->addWidget(m_list, 1);
  column->addWidget(m_nothingFound, 1);
}

void ThemeSettingsView::connectHandlers() {
  connect(&m_browser, &ThemeBrowser::changed, this, &ThemeSettingsView::render);
  connect(m_search, &SearchField::textChanged, &m_browser,
          [this](const QString& text) { m_browser.setSearchText(toUtf8(text)); });
  connect(m_search, &SearchField::focusChanged, &m_browser, &ThemeBrowser::setSearchFocused);
  connect(m_search, &SearchField::focusChanged, this, &ThemeSettingsView::takeLostKeyboard,
          Qt::QueuedConnection);
  connect(m_options, &IconButton::clicked, this, &ThemeSettingsView::openOptions);
  m_options->installEventFilter(this);
}

void ThemeSettingsView::render() {
  m_search->setText(fromUtf8(m_browser.state().searchText));
  renderList();
  renderFocus();
  renderEditor();
  const auto& state = m_browser.state();
  renderAlert(m_importAlert, state.importError, tr("Unable to import themes"),
              &ThemeBrowser::dismissImportError);
  renderAlert(m_exportAlert, state.exportError, tr("Unable to export themes"),
              &ThemeBrowser::dismissExportError);
}

/// A list that goes would hand the keyboard on to the next control.
void ThemeSettingsView::renderList() {
  const bool isEmpty = m_browser.filteredThemes().empty();
  const QWidget* focused = window()->focusWidget();
  const bool hasKeyboard = focused == this || focused == &m_list->view();
  if (isEmpty && hasKeyboard)
    setFocus(Qt::OtherFocusReason);
  m_nothingFound->setVisible(isEmpty);
  m_list->setVisible(!isEmpty);
  if (!isEmpty && hasKeyboard)
    m_list->setFocus(Qt::OtherFocusReason);
}

/// What has the keyboard while no search is typed. Without a list the screen keeps its keys itself.
QWidget* ThemeSettingsView::keyboardWidget() {
  return m_browser.filteredThemes().empty() ? static_cast<QWidget*>(this) : m_list;
}

void ThemeSettingsView::renderFocus() {
  const bool isFocused = m_search->lineEdit()->hasFocus();
  if (!isVisible() || m_browser.state().searchFocused == isFocused)
    return;
  if (m_browser.state().searchFocused)
    m_search->setFocus(Qt::OtherFocusReason);
  else
    keyboardWidget()->setFocus(Qt::OtherFocusReason);
}

/// The shortcuts take the keyboard away from a field at Escape and give it to nobody.
void ThemeSettingsView::takeLostKeyboard(bool isInSearch) {
  if (isInSearch || !isVisible() || window()->focusWidget() != nullptr)
    return;
  m_browser.handleKey("escape");
  keyboardWidget()->setFocus(Qt::OtherFocusReason);
}

void ThemeSettingsView::focusSearch() {
  m_browser.handleKey("/");
}

void ThemeSettingsView::renderEditor() {
  const auto& theme = m_browser.state().editingTheme;
  if (theme.has_value() == !m_editor.isNull())
    return;
  if (!theme) {
    CustomThemeEditor* over = m_editor;
    m_editor = nullptr;
    return over->reject();
  }
  m_editor = new CustomThemeEditor(
      *theme, [this](const AppTheme& saved) { m_browser.saveEditedTheme(saved); }, this);
  connect(m_editor, &QDialog::finished, &m_browser, [this] {
    m_editor = nullptr;
    m_browser.cancelEditing();
  });
  m_editor->open();
}

void ThemeSettingsView::renderAlert(QPointer<Alert>& alert, const std::optional<std::string>& message,
                                    const QString& title, void (ThemeBrowser::*dismiss)()) {
  if (!message || alert)
    return;
  alert = Alert::message(this, title, fromUtf8(*message));
  connect(alert, &QDialog::finished, &m_browser, [this, &alert, dismiss] {
    alert = nullptr;
    (m_browser.*dismiss)();
  });
  alert->open();
}

void ThemeSettingsView::openOptions() {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  const auto add = [&](Symbol symbol, const QString& text, void (ThemeBrowser::*action)()) {
    QAction* made = menu->addAction(symbolQIcon(symbol, palette().color(ThemeRole::primaryText)), text);
    connect(made, &QAction::triggered, &m_browser, action);
    return made;
  };
  add(Symbol::plus, tr("New Custom Theme"), &ThemeBrowser::beginNewTheme);
  add(Symbol::squareAndArrowDown, tr("Import JSON"), &ThemeBrowser::importThemes);
  add(Symbol::squareAndArrowUp, tr("Export JSON"), &ThemeBrowser::exportThemes)
      ->setEnabled(m_browser.canExport());
  const QSize size = menu->sizeHint();
  menu->popup(m_options->mapToGlobal(QPoint(m_options->width() - size.width(), m_options->height() + 4)));
}

/// Buttons move the focus with the arrow keys, which walk the themes here.
bool ThemeSettingsView::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_options && event->type() == QEvent::KeyPress) {
    const std::string name = keyName(*static_cast<QKeyEvent*>(event));
    if (name == "up" || name == "down")
      return m_browser.handleKey(name);
  }
  return QWidget::eventFilter(watched, event);
}

void ThemeSettingsView::keyPressEvent(QKeyEvent* event) {
  const bool asksForMenu = event->key() == Qt::Key_Menu ||
                           (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier);
  if (asksForMenu)
    m_list->openMenuOfActiveRow();
  else if (!m_browser.handleKey(keyName(*event)))
    event->ignore();
}

void ThemeSettingsView::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  // Otherwise the window gives the keyboard to the search field, which comes first.
  if (!m_browser.state().searchFocused)
    keyboardWidget()->setFocus(Qt::OtherFocusReason);
  renderFocus();
}

} // namespace notlet
