#include "capture/ui/MacCaptureView.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "capture/ui/ComposerCard.h"
#include "capture/ui/MacCaptureDragRegion.h"
#include "widgets/AppIcon.h"
#include "widgets/IconButton.h"
#include "widgets/TextButton.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int padding = 16;
constexpr int spacing = 12;
constexpr int titleHeight = 22;
constexpr int iconCornerRadius = 5;
constexpr int buttonSide = 28;
constexpr int symbolSide = 18;
/// The room around a symbol in its button, which would push it in from the card's edge.
constexpr int symbolInset = (buttonSide - symbolSide) / 2;
/// How far a button reaches beyond the title, above and below.
constexpr int buttonOverhang = (buttonSide - titleHeight) / 2;

IconButton* makeHeaderButton(Symbol symbol, const QString& name, const std::function<void()>& action) {
  auto* button = new IconButton(symbol, name);
  button->setShape(IconButton::Shape::round);
  button->setSides(symbolSide, buttonSide);
  QObject::connect(button, &QAbstractButton::clicked, button, action);
  return button;
}

} // namespace

MacCaptureView::MacCaptureView(CaptureComposer& composer, Host host, QWidget* parent)
    : QWidget(parent),
      m_composer(composer),
      m_host(std::move(host)),
      m_confirmation(new QLabel(QStringLiteral("Notletted ✓"))),
      m_confirmationFade(new FadeEffect(m_confirmation)) {
  setFixedSize(fixedSize);
  layOut();
  connect(&m_composer, &CaptureComposer::changed, this, &MacCaptureView::render);
  render();
}

// A view that goes while somebody dictates ends the dictation, which changes the composer.
MacCaptureView::~MacCaptureView() {
  m_composer.disconnect(this);
}

void MacCaptureView::layOut() {
  auto* save = new TextButton(Symbol::arrowUpCircleFill, QStringLiteral("Notlet"), TextButton::Look::primary);
  auto* inset = new QHBoxLayout;
  inset->setContentsMargins(0, 0, symbolInset, 0);
  auto* mic = new MicButton;
  mic->setSides(symbolSide, buttonSide);
  inset->addWidget(new ComposerCard(m_composer, mic, save));
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(padding, padding - buttonOverhang, padding - symbolInset, padding);
  rows->setSpacing(spacing - buttonOverhang);
  rows->addLayout(makeHeader());
  rows->addLayout(inset, 1);
}

QLayout* MacCaptureView::makeHeader() {
  auto* row = new QHBoxLayout;
  row->setSpacing(4);
  row->addWidget(captureTitle(), 1, Qt::AlignVCenter);
  if (m_host.onShowMainApp)
    row->addWidget(
        makeHeaderButton(Symbol::macwindow, QStringLiteral("Return to Main App"), m_host.onShowMainApp));
  row->addWidget(
      makeHeaderButton(Symbol::xmarkCircleFill, QStringLiteral("Close Quick Notlet"), m_host.onClose));
  return row;
}

QWidget* MacCaptureView::captureTitle() {
  using Mover = MacCaptureDragRegion::Mover;
  auto* area = m_host.onDragEnded
                   ? new MacCaptureDragRegion(m_host.placesWindows ? Mover::program : Mover::windowSystem,
                                              m_host.onDragEnded)
                   : new QWidget;
  area->setFixedHeight(titleHeight);
  auto* title = new QLabel(QStringLiteral("Quick Notlet"));
  title->setFont(textFont(TextStyle::headline));
  m_confirmation->setFont(textFont(TextStyle::caption, QFont::DemiBold));
  m_confirmation->setForegroundRole(ThemeRole::secondaryText);
  auto* row = new QHBoxLayout(area);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(8);
  row->addWidget(new AppIconView(titleHeight, iconCornerRadius));
  row->addWidget(title);
  row->addStretch();
  row->addWidget(m_confirmation);
  return area;
}

void MacCaptureView::render() {
  const bool shows = m_composer.state().showConfirmation;
  if (shows == m_confirmationFade->isShown())
    return;
  m_confirmationFade->setShown(shows);
  if (shows) {
    QAccessibleEvent announcement(m_confirmation, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
  }
}

} // namespace notlet
