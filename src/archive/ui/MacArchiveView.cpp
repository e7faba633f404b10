#include "archive/ui/MacArchiveView.h"

#include <QLineEdit>
#include <QVBoxLayout>

#include "widgets/TextConversion.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

using namespace std::chrono_literals;

constexpr int margin = 16;
constexpr int spacing = 8;
/// While an archive is being loaded, its hashtags change many times a second.
constexpr auto hashtagPause = 50ms;

QWidget* makeDivider() {
  auto* divider = new QWidget;
  divider->setFixedHeight(1);
  divider->setAutoFillBackground(true);
  divider->setBackgroundRole(ThemeRole::separator);
  return divider;
}

} // namespace

MacArchiveView::MacArchiveView(ArchiveBrowser& browser, QWidget* parent)
    : QWidget(parent),
      m_browser(browser),
      m_search(new SearchField(tr("Search notlets"), tr("Clear search"))),
      m_hashtags(new ArchiveHashtagBar),
      m_notice(new NoticeBar),
      m_banner(new ArchiveBanner),
      m_content(new QStackedLayout),
      m_list(new ArchiveList(browser)),
      m_placeholder(new ArchivePlaceholder) {
  m_hashtagTimer.setSingleShot(true);
  m_hashtagTimer.setInterval(hashtagPause);
  layOut();
  connectHandlers();
  render();
}

MacArchiveView::~MacArchiveView() {
  m_browser.disconnect(this);
  m_browser.disappear();
}

void MacArchiveView::layOut() {
  auto* controls = new QVBoxLayout;
  controls->setContentsMargins(margin, margin, margin, spacing + 4);
  controls->setSpacing(spacing + 4);
  controls->addWidget(m_search);
  controls->addWidget(m_hashtags);
  controls->addWidget(m_banner);
  // In a small window they give way to what there is to tell.
  for (QWidget* page : std::initializer_list<QWidget*>{m_list, m_placeholder}) {
    page->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Ignored);
    m_content->addWidget(page);
  }

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(m_notice);
  column->addLayout(controls);
  column->addWidget(makeDivider());
  column->addLayout(m_content, 1);
}

void MacArchiveView::connectHandlers() {
  connect(&m_browser, &ArchiveBrowser::changed, this, &MacArchiveView::render);
  connect(&m_browser, &ArchiveBrowser::resultsChanged, this, &MacArchiveView::renderContent);
  connect(&m_browser, &ArchiveBrowser::hashtagsChanged, this, [this] {
    if (!m_hashtagTimer.isActive())
      m_hashtagTimer.start();
  });
  connect(&m_hashtagTimer, &QTimer::timeout, this, &MacArchiveView::renderHashtags);
  connect(m_search, &SearchField::textChanged, this,
          [this](const QString& text) { m_browser.setSearchText(toUtf8(text)); });
  connect(m_search, &SearchField::focusChanged, &m_browser, &ArchiveBrowser::setSearchFocused);
  connect(m_hashtags, &ArchiveHashtagBar::chosen, &m_browser, &ArchiveBrowser::chooseHashtag);
  connect(m_hashtags, &ArchiveHashtagBar::entered, this, [this] {
    m_browser.enterHashtags();
    renderHashtags();
  });
  connect(m_list, &ArchiveList::entered, &m_browser, &ArchiveBrowser::enterResults);
  connect(m_notice, &NoticeBar::dismissed, &m_browser, &ArchiveBrowser::dismissDraftWarning);
  connect(m_banner, &ArchiveBanner::saveRequested, &m_browser, &ArchiveBrowser::saveOrphanedEdit);
  connect(m_banner, &ArchiveBanner::discardRequested, this, &MacArchiveView::askToDiscard);
}

void MacArchiveView::render() {
  m_search->setText(fromUtf8(m_browser.state().searchText));
  renderHashtags();
  renderContent();
  renderNotices();
  renderFocus();
  renderDeleteConfirmation();
  renderSaveAlert();
}

void MacArchiveView::renderHashtags() {
  const auto& state = m_browser.state();
  // An editor keeps the keyboard when a chip is clicked.
  const bool isWalked = state.keyboardSection == MacArchiveKeyboardSection::hashtags &&
                        (!state.editingID || m_hashtags->hasFocus());
  m_hashtags->setTags(m_browser.visibleHashtags());
  m_hashtags->setSelectedTags(state.selectedTags);
  m_hashtags->setPointer(state.activeHashtagIndex, isWalked);
  m_hashtags->setSearchInput(fromUtf8(state.hashtagSearchInput));
  m_hashtags->setVisible(!m_browser.usedHashtags().empty());
}

void MacArchiveView::renderContent() {
  const auto& state = m_browser.state();
  const bool isEmpty = m_browser.resultCount() == 0 && !m_browser.isSearching();
  if (isEmpty && state.searchText.empty() && state.selectedTags.empty())
    m_placeholder->setContent(Symbol::squareAndPencil, tr("No notlets yet"),
                              tr("Your thoughts will appear here."));
  else if (isEmpty)
    m_placeholder->setContent(Symbol::magnifyingglass, tr("No results"),
                              tr("Try different keywords or a hashtag."));
  m_content->setCurrentWidget(isEmpty ? static_cast<QWidget*>(m_placeholder) : m_list);
}

void MacArchiveView::renderNotices() {
  m_notice->setText(fromUtf8(m_browser.draftWarning()));
  const std::string* orphan = m_browser.orphanedEdit();
  if (orphan)
    m_banner->setOrphanedEdit(fromUtf8(*orphan));
  m_banner->setVisible(orphan);
}

/// What has the keyboard while no text is being typed.
QWidget* MacArchiveView::keyboardWidget() const {
  const bool isOnHashtags = m_browser.state().keyboardSection == MacArchiveKeyboardSection::hashtags;
  return isOnHashtags && m_hashtags->isVisible() ? m_hashtags : m_content->currentWidget();
}

void MacArchiveView::renderFocus() {
  const auto& state = m_browser.state();
  if (!isVisible())
    return;
  if (state.searchFocused != m_search->lineEdit()->hasFocus()) {
    QWidget* target = state.searchFocused ? m_search : keyboardWidget();
    return target->setFocus(Qt::OtherFocusReason);
  }
  // An editor keeps the keyboard, and so does whatever was reached by Tab.
  const bool isMovable = m_hashtags->hasFocus() || m_content->currentWidget()->hasFocus();
  if (isMovable && state.keyboardSection != MacArchiveKeyboardSection::search &&
      !keyboardWidget()->hasFocus())
    keyboardWidget()->setFocus(Qt::OtherFocusReason);
}

void MacArchiveView::renderDeleteConfirmation() {
  const bool isWanted = m_browser.state().showingDeleteConfirmation;
  if (isWanted == !m_deleteConfirmation.isNull())
    return;
  if (!isWanted) {
    Alert* over = m_deleteConfirmation;
    m_deleteConfirmation = nullptr;
    return over->reject();
  }
  const NotletEntry* notlet = m_browser.selectedNotlet();
  m_deleteConfirmation =
      Alert::destructiveQuestion(this, tr("Delete this notlet?"), tr("This cannot be undone."), tr("Delete"),
                                 notlet ? tr("“%1”").arg(excerptOf(fromUtf8(notlet->content))) : QString());
  connect(m_deleteConfirmation, &QDialog::finished, this, [this](int answer) {
    m_deleteConfirmation = nullptr;
    if (answer == QDialog::Accepted)
      m_browser.deleteSelectedNotlet();
    else
      m_browser.dismissDeleteConfirmation();
  });
  m_deleteConfirmation->open();
}

void MacArchiveView::renderSaveAlert() {
  const auto& state = m_browser.state();
  if (!state.saveError || m_saveAlert)
    return;
  m_saveAlert = Alert::message(this, tr("Unable to update notlet"), fromUtf8(*state.saveError),
                               fromUtf8(state.saveFailureReason));
  connect(m_saveAlert, &QDialog::finished, this, [this] {
    m_saveAlert = nullptr;
    m_browser.dismissSaveError();
  });
  m_saveAlert->open();
}

void MacArchiveView::askToDiscard() {
  auto* question =
      Alert::destructiveQuestion(this, tr("Discard this text?"), tr("This cannot be undone."), tr("Discard"));
  connect(question, &QDialog::accepted, &m_browser, &ArchiveBrowser::discardOrphanedEdit);
  question->open();
}

void MacArchiveView::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  m_browser.appear();
  // Otherwise the window gives the keyboard to the search field, which comes first.
  if (!m_browser.state().searchFocused)
    keyboardWidget()->setFocus(Qt::OtherFocusReason);
  renderFocus();
}

/// With its window hidden or minimised, the section is still the one that is shown in it.
void MacArchiveView::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  if (isHidden())
    m_browser.disappear();
}

} // namespace notlet
