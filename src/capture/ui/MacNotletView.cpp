#include "capture/ui/MacNotletView.h"

#include <QEvent>
#include <QHBoxLayout>

#include "widgets/IconButton.h"
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

MicButton* makeMicButton() {
  auto* button = new MicButton;
  button->setSides(20, 36);
  return button;
}

IconButton* makeSaveButton() {
  auto* button = new IconButton(Symbol::arrowUpCircleFill, QStringLiteral("Save notlet"));
  button->setShape(IconButton::Shape::round);
  button->setSides(28, 36);
  button->setRole(ThemeRole::focusRing);
  return button;
}

} // namespace

MacNotletView::MacNotletView(CaptureComposer& composer, QWidget* parent)
    : QWidget(parent),
      m_composer(composer),
      m_column(new QVBoxLayout(this)),
      m_title(new QLabel(QStringLiteral("Notlet"))),
      m_titleFade(new FadeEffect(m_title)),
      m_card(new ComposerCard(composer, makeMicButton(), makeSaveButton())),
      m_confirmation(new ConfirmationCapsule(QStringLiteral("Notletted ✓"), this)) {
  layOut();
  connect(&m_composer, &CaptureComposer::changed, this, &MacNotletView::render);
  render();
}

// A view that goes while somebody dictates ends the dictation, which changes the composer.
MacNotletView::~MacNotletView() {
  m_composer.disconnect(this);
}

void MacNotletView::layOut() {
  m_title->setAlignment(Qt::AlignCenter);
  QSizePolicy titlePolicy = m_title->sizePolicy();
  titlePolicy.setRetainSizeWhenHidden(true);
  m_title->setSizePolicy(titlePolicy);
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

// The confirmation stands where the title is.
void MacNotletView::render() {
  m_titleFade->setShown(!m_composer.state().showConfirmation);
  placeConfirmation();
  m_confirmation->setShown(m_composer.state().showConfirmation);
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
  placeConfirmation();
}

// Its check mark takes a font of its own, which the first picture need not wait for.
void MacNotletView::placeConfirmation() {
  if (!m_composer.state().showConfirmation && m_confirmation->isHidden())
    return;
  m_confirmation->resize(m_confirmation->sizeHint());
  m_confirmation->move((width() - m_confirmation->width()) / 2, confirmationTop);
}

} // namespace notlet
