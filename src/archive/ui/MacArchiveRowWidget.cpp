#include "archive/ui/MacArchiveRowWidget.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

#include "archive/ui/HashtagChips.h"
#include "archive/ui/MacArchiveRow.h"
#include "archive/ui/RowEditor.h"
#include "widgets/MacHashtagSuggestionsView.h"
#include "widgets/TextButton.h"
#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int buttonSpacing = 12;
/// What a borderless button has around its text, which stands where the texts above do.
constexpr int buttonPadding = 8;
/// About what the parts of the row other than the text take.
constexpr int heightBesidesText = 150;

std::string_view shownPart(std::string_view text) {
  std::size_t end = std::min(text.size(), MacArchiveRowWidget::mostShownBytes);
  std::size_t lines = 0;
  for (std::size_t position = 0; position < end; ++position) {
    if (text[position] == '\n' && ++lines == MacArchiveRowWidget::mostShownLines)
      end = position;
  }
  while (end > 0 && end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
    --end;
  return text.substr(0, end);
}

QLabel* makeCaption(QPalette::ColorRole role) {
  auto* label = new QLabel;
  label->setFont(textFont(TextStyle::caption));
  label->setForegroundRole(role);
  label->setTextFormat(Qt::PlainText);
  return label;
}

QHBoxLayout* makeButtonRow(std::initializer_list<TextButton*> buttons) {
  auto* row = new QHBoxLayout;
  row->setSpacing(buttonSpacing);
  for (TextButton* button : buttons)
    row->addWidget(button);
  row->addStretch();
  return row;
}

} // namespace

MacArchiveRowWidget::MacArchiveRowWidget(QWidget* parent)
    : QWidget(parent),
      m_text(new FittingTextEdit),
      m_editor(new RowEditor),
      m_suggestions(new MacHashtagSuggestionsView(
          {}, [this](const std::string& tag) { Q_EMIT suggestionChosen(tag); })),
      m_more(makeCaption(ThemeRole::secondaryText)),
      m_notice(makeCaption(ThemeRole::primaryText)),
      m_date(makeCaption(ThemeRole::secondaryText)),
      m_hashtags(new HashtagStrip),
      m_restore(new TextButton(Symbol::squareAndPencil, QStringLiteral("Restore unsaved edit"),
                               TextButton::Look::borderless)),
      m_edit(new TextButton(Symbol::pencil, QStringLiteral("Edit"), TextButton::Look::borderless)),
      m_delete(
          new TextButton(Symbol::trash, QStringLiteral("Delete"), TextButton::Look::borderlessDestructive)),
      m_save(new TextButton(QStringLiteral("Save"), TextButton::Look::borderless)),
      m_cancel(new TextButton(QStringLiteral("Cancel"), TextButton::Look::borderless)) {
  m_text->setReadOnly(true);
  m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  m_text->setAccessibleName(QStringLiteral("Notlet text"));
  m_text->setUndoRedoEnabled(false);
  m_more->setText(QStringLiteral("This is the beginning of a very long text. Edit shows all of it."));
  m_more->setWordWrap(true);
  m_notice->setWordWrap(true);
  layOut();
  connectHandlers();
  showText(false);
}

void MacArchiveRowWidget::layOut() {
  const QMargins margins = RowMeasures::cardMargins + RowMeasures::contentMargins;
  auto* parts = new QVBoxLayout(this);
  parts->setContentsMargins(margins - QMargins(buttonPadding, 0, 0, 0));
  parts->setSpacing(RowMeasures::partSpacing);
  auto* inset = new QVBoxLayout;
  inset->setContentsMargins(buttonPadding, 0, 0, 0);
  for (QWidget* part :
       std::initializer_list<QWidget*>{m_text, m_more, m_editor, m_suggestions, m_notice, m_date, m_hashtags})
    inset->addWidget(part);
  parts->addLayout(inset);
  parts->addLayout(makeButtonRow({m_restore}));
  parts->addLayout(makeButtonRow({m_edit, m_delete, m_save, m_cancel}));
}

void MacArchiveRowWidget::connectHandlers() {
  connect(&m_editor->edit(), &QPlainTextEdit::textChanged, this, [this] {
    m_shownDraft = toUtf8(m_editor->edit().exactText());
    Q_EMIT draftChanged(m_shownDraft);
  });
  for (const FittingTextEdit* edit :
       {static_cast<const FittingTextEdit*>(m_text), static_cast<const FittingTextEdit*>(&m_editor->edit())})
    connect(edit, &QPlainTextEdit::cursorPositionChanged, this, [this, edit] { reportCaret(edit); });
  connect(m_suggestions, &MacHashtagSuggestionsView::dismissed, this, [this] { focusEditor(); });
  connect(m_edit, &TextButton::clicked, this, &MacArchiveRowWidget::editRequested);
  connect(m_delete, &TextButton::clicked, this, &MacArchiveRowWidget::deleteRequested);
  connect(m_restore, &TextButton::clicked, this, &MacArchiveRowWidget::restoreRequested);
  connect(m_save, &TextButton::clicked, this, &MacArchiveRowWidget::saveRequested);
  connect(m_cancel, &TextButton::clicked, this, &MacArchiveRowWidget::cancelRequested);
  m_text->viewport()->installEventFilter(this);
}

void MacArchiveRowWidget::setNotlet(const NotletEntry& notlet) {
  const std::string_view shown = shownPart(notlet.content);
  const QString content = fromUtf8(shown);
  m_isCut = shown.size() < notlet.content.size();
  m_more->setVisible(m_isCut && !m_isEditing);
  if (content != m_text->exactText()) {
    m_text->setExactText(content);
    m_text->moveCursor(QTextCursor::Start);
  }
  m_date->setText(creationText(notlet));
  m_hashtags->setHashtags(notlet.hashtags);
  m_hashtags->setVisible(!notlet.hashtags.empty());
}

void MacArchiveRowWidget::showText(bool offersRestore) {
  setEditing(false);
  m_restore->setVisible(offersRestore);
}

void MacArchiveRowWidget::showEditor(const Editing& editing) {
  if (editing.draft != m_shownDraft) {
    m_shownDraft = editing.draft;
    const QSignalBlocker blocker(&m_editor->edit());
    m_editor->edit().setExactText(fromUtf8(editing.draft));
    m_editor->edit().updateGeometry();
  }
  // What was typed before belongs to another notlet, or to an edit that is over.
  if (!m_isEditing)
    m_editor->edit().document()->clearUndoRedoStacks();
  m_suggestions->setSuggestions(editing.suggestions);
  m_suggestions->setVisible(!editing.suggestions.empty());
  m_notice->setText(breakable(fromUtf8(editing.notice), m_notice->fontMetrics(), width() / 2));
  m_notice->setVisible(!editing.notice.empty());
  m_restore->hide();
  setEditing(true);
}

void MacArchiveRowWidget::setEditing(bool editing) {
  m_isEditing = editing;
  for (QWidget* shown : std::initializer_list<QWidget*>{m_text, m_edit, m_delete})
    shown->setVisible(!editing);
  for (QWidget* shown : std::initializer_list<QWidget*>{m_editor, m_save, m_cancel})
    shown->setVisible(editing);
  m_more->setVisible(m_isCut && !editing);
  if (editing)
    return;
  m_suggestions->hide();
  m_notice->hide();
}

void MacArchiveRowWidget::focusEditorNextTurn() {
  QMetaObject::invokeMethod(
      this,
      [this] {
        if (m_isEditing)
          focusEditor();
      },
      Qt::QueuedConnection);
}

void MacArchiveRowWidget::focusEditor() {
  m_editor->setFocus(Qt::OtherFocusReason);
  m_editor->edit().ensureCursorVisible();
  reportCaret(&m_editor->edit());
}

QRect MacArchiveRowWidget::keyboardPart(const QWidget* control) const {
  const auto* edit = qobject_cast<const FittingTextEdit*>(control);
  return (edit ? edit->caretRect() : control->rect()).translated(control->mapTo(this, QPoint()));
}

void MacArchiveRowWidget::setPageHeight(int height) {
  m_text->setHeights(0, height - heightBesidesText, false);
  m_editor->setHighest(height - heightBesidesText);
}

void MacArchiveRowWidget::setHighlighted(bool highlighted) {
  if (highlighted == m_isHighlighted)
    return;
  m_isHighlighted = highlighted;
  update();
}

void MacArchiveRowWidget::orderAfter(QWidget* before) {
  for (QWidget* next : std::initializer_list<QWidget*>{m_text, &m_editor->edit(), m_suggestions, m_restore,
                                                       m_edit, m_delete, m_save, m_cancel}) {
    setTabOrder(before, next);
    before = next;
  }
}

void MacArchiveRowWidget::reportCaret(const FittingTextEdit* edit) {
  if (edit->hasFocus())
    Q_EMIT caretMoved(keyboardPart(edit));
}

bool MacArchiveRowWidget::eventFilter(QObject* watched, QEvent* event) {
  // Clicks elsewhere go through to the list.
  if (event->type() == QEvent::MouseButtonRelease)
    Q_EMIT clicked();
  return QWidget::eventFilter(watched, event);
}

void MacArchiveRowWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  paintRowCard(painter, rect(), palette(), m_isHighlighted);
}

} // namespace notlet
