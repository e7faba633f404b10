#include "capture/ui/MacNotletView.h"

#include <QEvent>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QScopedValueRollback>

#include "widgets/Alert.h"
#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

struct Measures {
  int spacing;
  int padding;
  int titleSize;
};

constexpr Measures compactMeasures{18, 18, 36};
constexpr Measures wideMeasures{28, 40, 48};
constexpr int compactBelowWidth = 540;
constexpr int compactBelowHeight = 500;
constexpr int contentWidth = 560;
constexpr int tallestCard = 440;
constexpr int confirmationTop = 40;
constexpr int narrowestHint = 250;

const QString hintText = QStringLiteral("Return to save · Shift Return for new line");

} // namespace

MacNotletView::MacNotletView(CaptureComposer& composer, QWidget* parent)
    : QWidget(parent),
      m_composer(composer),
      m_column(new QVBoxLayout(this)),
      m_title(new QLabel(QStringLiteral("Notlet"))),
      m_titleFade(new FadeEffect(m_title)),
      m_card(new ComposerCard),
      m_editor(&m_card->editor()),
      m_suggestions(new MacHashtagSuggestionsView(
          {}, [this](const std::string& tag) { m_composer.acceptSuggestion(tag); })),
      m_hint(new QLabel(hintText)),
      m_save(new IconButton(Symbol::arrowUpCircleFill, QStringLiteral("Save notlet"))),
      m_confirmation(new ConfirmationCapsule(QStringLiteral("Notletted ✓"), this)) {
  layOut();
  connectHandlers();
  render();
}

void MacNotletView::layOut() {
  m_title->setAlignment(Qt::AlignCenter);
  QSizePolicy titlePolicy = m_title->sizePolicy();
  titlePolicy.setRetainSizeWhenHidden(true);
  m_title->setSizePolicy(titlePolicy);
  m_editor->setAccessibleName(QStringLiteral("Notlet text"));
  m_editor->setPlaceholderText(QStringLiteral("What’s on your mind?"));
  m_hint->setFont(textFont(TextStyle::caption));
  m_hint->setForegroundRole(ThemeRole::secondaryText);
  m_hint->setWordWrap(true);
  m_hint->setTextFormat(Qt::PlainText);
  m_save->setShape(IconButton::Shape::round);
  m_save->setSides(28, 36);
  m_save->setRole(ThemeRole::focusRing);

  auto* footer = new QWidget;
  auto* row = new QHBoxLayout(footer);
  row->setContentsMargins(8, 0, 4, 0);
  row->setSpacing(8);
  row->addWidget(m_hint, 1);
  row->addWidget(m_save);
  m_card->addRow(m_suggestions);
  m_card->addRow(footer);
  m_card->setMaximumSize(contentWidth, tallestCard);

  // Room above and below stays empty only once the card is as tall as it gets.
  m_column->addStretch();
  m_column->addWidget(m_title);
  auto* centred = new QHBoxLayout;
  centred->addStretch();
  centred->addWidget(m_card, contentWidth);
  centred->addStretch();
  m_column->addLayout(centred, tallestCard);
  m_column->addStretch();
}

void MacNotletView::connectHandlers() {
  connect(&m_composer, &CaptureComposer::changed, this, &MacNotletView::render);
  connect(m_editor, &ExactTextEdit::textChanged, this, &MacNotletView::takeInput);
  connect(m_editor, &ExactTextEdit::returnPressed, &m_composer, &CaptureComposer::save);
  connect(m_save, &QAbstractButton::clicked, &m_composer, &CaptureComposer::save);
  connect(m_suggestions, &MacHashtagSuggestionsView::dismissed, this,
          [this] { m_composer.setInputFocused(true); });
  // On the button, so that it is in force just as long as the button is.
  m_save->setShortcut(QKeySequence(Qt::META | Qt::Key_Return));
  m_editor->installEventFilter(this);
}

void MacNotletView::takeInput() {
  const QScopedValueRollback isTaking(m_isTakingInput, true);
  m_composer.setInput(toUtf8(m_editor->exactText()));
  m_shownRevision = m_composer.inputRevision();
}

void MacNotletView::render() {
  const auto& state = m_composer.state();
  renderInput();
  m_save->setEnabled(state.canSave());
  const auto suggestions = m_composer.suggestions();
  m_suggestions->setSuggestions(suggestions);
  m_suggestions->setVisible(!suggestions.empty());
  // The confirmation stands where the title is.
  m_titleFade->setShown(!state.showConfirmation);
  m_confirmation->setShown(state.showConfirmation);
  renderHint();
  renderFocus();
  renderSaveAlert();
}

void MacNotletView::renderInput() {
  // What comes from the editor is there already.
  if (m_isTakingInput || m_composer.inputRevision() == m_shownRevision)
    return;
  m_shownRevision = m_composer.inputRevision();
  const QSignalBlocker blocker(m_editor);
  m_editor->setExactText(fromUtf8(m_composer.state().input));
}

// A warning takes the place of the hint: whoever reads it knows how to save by now.
void MacNotletView::renderHint() {
  const auto& warning = m_composer.state().draftWarning;
  const QString text = warning.empty() ? hintText : fromUtf8(warning);
  m_hint->setText(breakable(text, m_hint->fontMetrics(), narrowestHint));
}

void MacNotletView::renderFocus() {
  if (!isVisible() || m_composer.state().inputFocused == (window()->focusWidget() == m_editor))
    return;
  if (m_composer.state().inputFocused)
    m_editor->setFocus(Qt::OtherFocusReason);
  else
    m_editor->clearFocus();
}

void MacNotletView::renderSaveAlert() {
  const auto& state = m_composer.state();
  if (!state.saveError || m_alertIsOpen)
    return;
  m_alertIsOpen = true;
  auto* alert = Alert::message(this, QStringLiteral("Unable to save notlet"), fromUtf8(*state.saveError),
                               fromUtf8(state.saveFailureReason));
  connect(alert, &QDialog::finished, this, [this] {
    m_alertIsOpen = false;
    m_composer.dismissSaveError();
  });
  alert->open();
}

bool MacNotletView::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusIn)
    m_composer.setInputFocused(true);
  // Another window or a menu takes the keys for a while, but the editor gets them back by itself.
  if (event->type() == QEvent::FocusOut) {
    const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
    if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
      m_composer.setInputFocused(false);
  }
  return QWidget::eventFilter(watched, event);
}

void MacNotletView::resizeEvent(QResizeEvent*) {
  arrange();
}

void MacNotletView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange)
    arrange();
  QWidget::changeEvent(event);
}

void MacNotletView::arrange() {
  const bool isCompact = width() < compactBelowWidth || height() < compactBelowHeight;
  const Measures& measures = isCompact ? compactMeasures : wideMeasures;
  m_column->setContentsMargins(measures.padding, measures.padding, measures.padding, measures.padding);
  m_column->setSpacing(0);
  m_title->setFont(displayFont(measures.titleSize));
  m_title->setContentsMargins(0, 0, 0, measures.spacing);
  m_confirmation->resize(m_confirmation->sizeHint());
  m_confirmation->move((width() - m_confirmation->width()) / 2, confirmationTop);
}

void MacNotletView::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  m_composer.appear();
  renderFocus();
}

} // namespace notlet
