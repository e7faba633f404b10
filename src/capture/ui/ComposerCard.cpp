#include "capture/ui/ComposerCard.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QScopedValueRollback>
#include <QTextDocument>
#include <QVBoxLayout>
#include <functional>

#include "widgets/Alert.h"
#include "widgets/IconButton.h"
#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int cornerRadius = 10;
constexpr int innerMargin = 12;
/// How far rows may reach beyond the text to both sides, for what has a padding of its own.
constexpr int rowOverhang = 6;
constexpr int narrowestMessage = 200;
constexpr int leastLines = 2;

/// Whether the key writes, or moves the caret.
bool isTyping(const QKeyEvent& event) {
  const bool isMove = event.key() >= Qt::Key_Home && event.key() <= Qt::Key_PageDown;
  return isMove || (!event.text().isEmpty() && event.key() != Qt::Key_Escape);
}

QLabel* makeCaption(QPalette::ColorRole role, const QString& text = {}) {
  auto* caption = new QLabel(text);
  caption->setFont(textFont(TextStyle::caption));
  caption->setForegroundRole(role);
  caption->setWordWrap(true);
  caption->setTextFormat(Qt::PlainText);
  return caption;
}

} // namespace

ComposerCard::ComposerCard(CaptureComposer& composer, MicButton* mic, QAbstractButton* save, QWidget* parent)
    : QWidget(parent),
      m_composer(composer),
      m_editor(new ExactTextEdit(this)),
      m_suggestions(new MacHashtagSuggestionsView(
          {}, [this](const std::string& tag) { m_composer.acceptSuggestion(tag); })),
      m_message(makeCaption(ThemeRole::primaryText)),
      m_dismiss(new IconButton(Symbol::xmarkCircleFill, QStringLiteral("Dismiss message"))),
      m_mic(mic),
      m_save(save) {
  setAttribute(Qt::WA_InputMethodEnabled);
  prepareEditor();
  layOut();
  connectHandlers();
  render();
}

void ComposerCard::prepareEditor() {
  setAccessibleName(QStringLiteral("New notlet"));
  m_editor->setAccessibleName(QStringLiteral("Notlet text"));
  m_editor->setPlaceholderText(QStringLiteral("What’s on your mind?"));
  m_editor->setFrameShape(QFrame::NoFrame);
  m_editor->setFont(textFont(TextStyle::body));
  m_editor->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  m_editor->setTabChangesFocus(true);
  m_editor->document()->setDocumentMargin(2);
  m_editor->setMinimumHeight(leastLines * m_editor->fontMetrics().lineSpacing() + 4);
  m_editor->viewport()->setAutoFillBackground(false); // The card shows through.
  m_editor->installEventFilter(this);
  m_editor->viewport()->installEventFilter(this);
}

void ComposerCard::layOut() {
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(innerMargin - rowOverhang, innerMargin, innerMargin - rowOverhang, 8);
  rows->setSpacing(8);
  auto* inset = new QHBoxLayout;
  inset->setContentsMargins(rowOverhang, 0, rowOverhang, 0);
  inset->addWidget(m_editor);
  rows->addLayout(inset, 1);
  rows->addWidget(m_suggestions);
  rows->addWidget(makeMessageRow());
  rows->addWidget(makeFooter());
}

QWidget* ComposerCard::makeMessageRow() {
  m_dismiss->setSides(14, 22);
  m_dismiss->setShape(IconButton::Shape::round);
  auto* message = new QWidget;
  auto* row = new QHBoxLayout(message);
  row->setContentsMargins(8, 0, 2, 0);
  row->setSpacing(8);
  row->addWidget(m_message, 1);
  row->addWidget(m_dismiss, 0, Qt::AlignTop);
  return message;
}

QWidget* ComposerCard::makeFooter() {
  auto* footer = new QWidget;
  auto* row = new QHBoxLayout(footer);
  row->setContentsMargins(8, 0, 2, 0);
  row->setSpacing(8);
  row->addWidget(
      makeCaption(ThemeRole::secondaryText, QStringLiteral("Return to save · Shift Return for new line")), 1);
  row->addWidget(m_mic);
  row->addWidget(m_save);
  return footer;
}

void ComposerCard::connectHandlers() {
  connect(&m_composer, &CaptureComposer::changed, this, &ComposerCard::render);
  connect(m_editor, &ExactTextEdit::textChanged, this, &ComposerCard::takeInput);
  connect(m_editor, &ExactTextEdit::returnPressed, &m_composer, &CaptureComposer::save);
  connect(m_mic, &QAbstractButton::clicked, &m_composer, &CaptureComposer::handleMicTap);
  connect(&m_composer, &CaptureComposer::inputLevelChanged, m_mic, &MicButton::setLevel);
  connect(m_save, &QAbstractButton::clicked, &m_composer, &CaptureComposer::save);
  connect(m_dismiss, &QAbstractButton::clicked, &m_composer, &CaptureComposer::dismissDraftNotice);
  connect(m_suggestions, &MacHashtagSuggestionsView::dismissed, this,
          [this] { m_composer.setInputFocused(true); });
  // On the button, so that it is in force just as long as the button is.
  m_save->setShortcut(QKeySequence(Qt::META | Qt::Key_Return));
}

void ComposerCard::takeInput() {
  const QScopedValueRollback isTaking(m_isTakingInput, true);
  m_composer.setInput(toUtf8(m_editor->exactText()));
  m_shownRevision = m_composer.inputRevision();
}

void ComposerCard::render() {
  renderInput();
  if (!m_composer.state().canSave())
    keepKeyboardFrom(m_save);
  m_save->setEnabled(m_composer.state().canSave());
  const auto suggestions = m_composer.suggestions();
  m_suggestions->setSuggestions(suggestions);
  m_suggestions->setVisible(!suggestions.empty());
  renderMessage();
  renderFocus();
  renderDictation();
  renderAlerts();
}

void ComposerCard::renderInput() {
  // What comes from the editor is there already.
  if (m_isTakingInput || m_composer.inputRevision() == m_shownRevision)
    return;
  m_shownRevision = m_composer.inputRevision();
  const QSignalBlocker blocker(m_editor);
  // One dictation is taken back at once, however often its words were read anew.
  const bool isDictated = m_composer.state().dictation == CaptureComposer::Dictation::recording;
  using UndoStep = ExactTextEdit::UndoStep;
  m_editor->setExactText(fromUtf8(m_composer.state().input),
                         isDictated && m_holdsDictated ? UndoStep::joinsPrevious : UndoStep::own);
  m_holdsDictated = isDictated;
}

// What is true at the moment comes before what can be read later.
void ComposerCard::renderMessage() {
  const std::string& warning = m_composer.state().draftWarning;
  const std::string& notice = m_composer.state().draftNotice;
  const bool isDismissible = warning.empty() && !notice.empty();
  if (!isDismissible)
    keepKeyboardFrom(m_dismiss);
  m_dismiss->setVisible(isDismissible);
  const QString text = fromUtf8(warning.empty() ? notice : warning);
  m_message->setText(breakable(text, m_message->fontMetrics(), narrowestMessage));
  m_message->parentWidget()->setVisible(!text.isEmpty());
}

/// A button that goes, or turns grey, would hand the keyboard on to the next one.
void ComposerCard::keepKeyboardFrom(const QWidget* button) {
  if (window()->focusWidget() == button)
    m_editor->setFocus(Qt::OtherFocusReason);
}

// A window of which nobody has the keyboard gives it to its first button as soon as it is active again.
void ComposerCard::renderFocus() {
  const QWidget* focused = window()->focusWidget();
  if (!isVisible())
    return;
  if (!m_composer.state().inputFocused && (focused == nullptr || focused == m_editor))
    setFocus(Qt::OtherFocusReason);
  else if (m_composer.state().inputFocused && focused != m_editor)
    m_editor->setFocus(Qt::OtherFocusReason);
}

// Whoever speaks has the hands free: the keys of the card do for the rest.
void ComposerCard::renderDictation() {
  const auto dictation = m_composer.state().dictation;
  if (dictation == m_mic->dictation())
    return;
  m_mic->setDictation(dictation);
  m_holdsDictated = false;
  if (dictation == CaptureComposer::Dictation::recording && window()->focusWidget() == m_mic)
    setFocus(Qt::OtherFocusReason);
}

void ComposerCard::renderAlerts() {
  const auto& state = m_composer.state();
  if (m_alertIsOpen)
    return;
  if (state.saveError)
    openAlert(Alert::message(this, QStringLiteral("Unable to save notlet"), fromUtf8(*state.saveError),
                             fromUtf8(state.saveFailureReason)),
              &CaptureComposer::dismissSaveError);
  else if (state.speechError)
    openAlert(Alert::message(this, QStringLiteral("Speech Recognition"), fromUtf8(*state.speechError)),
              &CaptureComposer::dismissSpeechError);
}

void ComposerCard::openAlert(Alert* alert, void (CaptureComposer::*dismiss)()) {
  m_alertIsOpen = true;
  connect(alert, &QDialog::finished, this, [this, dismiss] {
    m_alertIsOpen = false;
    std::invoke(dismiss, m_composer);
  });
  alert->open();
}

// Suggestions and warnings make the editor smaller while the user is typing at its end.
void ComposerCard::keepCaretInSight(QSize before) {
  if (QRect(QPoint(), before).intersects(m_editor->cursorRect()))
    QMetaObject::invokeMethod(m_editor, &QPlainTextEdit::ensureCursorVisible, Qt::QueuedConnection);
}

bool ComposerCard::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_editor->viewport()) {
    if (event->type() == QEvent::Resize)
      keepCaretInSight(static_cast<QResizeEvent*>(event)->oldSize());
    return false;
  }
  const bool isFocusOut = event->type() == QEvent::FocusOut;
  if (event->type() == QEvent::FocusIn)
    m_composer.setInputFocused(true);
  // Another window or a menu takes the keys for a while, but the editor gets them back by itself.
  if (isFocusOut) {
    const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
    if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
      m_composer.setInputFocused(false);
  }
  if (event->type() == QEvent::FocusIn || isFocusOut)
    update();
  return QWidget::eventFilter(watched, event);
}

void ComposerCard::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  m_composer.appear();
  renderFocus();
}

void ComposerCard::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  m_composer.disappear();
}

void ComposerCard::keyPressEvent(QKeyEvent* event) {
  if (useKey(*event))
    return;
  // What is typed while the card has the keyboard is meant for the editor.
  if (!hasFocus() || !isTyping(*event))
    return QWidget::keyPressEvent(event);
  m_composer.setInputFocused(true);
  QCoreApplication::sendEvent(m_editor, event);
}

// So is what takes several keys, such as an accent and its letter.
void ComposerCard::inputMethodEvent(QInputMethodEvent* event) {
  if (event->commitString().isEmpty())
    return;
  m_composer.setInputFocused(true);
  QInputMethodEvent committed;
  committed.setCommitString(event->commitString());
  QCoreApplication::sendEvent(m_editor, &committed);
}

bool ComposerCard::useKey(const QKeyEvent& event) {
  const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
  if (event.key() == Qt::Key_M && modifiers == Qt::ControlModifier) {
    m_composer.handleMicTap();
    return true;
  }
  if (!hasFocus() || modifiers != Qt::NoModifier)
    return false;
  if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) {
    m_composer.save();
    return true;
  }
  if (event.key() != Qt::Key_Escape || m_composer.state().dictation == CaptureComposer::Dictation::off)
    return false;
  m_composer.stopDictation();
  return true;
}

void ComposerCard::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const bool isFocused = m_editor->hasFocus();
  const qreal lineWidth = isFocused ? 1.5 : 1.0;
  painter.setBrush(palette().color(ThemeRole::surface));
  painter.setPen(
      QPen(isFocused ? quietFocusRing(palette()) : palette().color(ThemeRole::separator), lineWidth));
  const qreal inset = lineWidth / 2;
  painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), cornerRadius, cornerRadius);
}

void ComposerCard::mousePressEvent(QMouseEvent*) {
  m_editor->setFocus(Qt::MouseFocusReason);
}

} // namespace notlet
