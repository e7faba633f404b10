#include "shortcuts/ui/ShortcutForm.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include "shortcuts/DesktopNotes.h"
#include "shortcuts/ui/KeyRow.h"
#include "shortcuts/ui/TimeoutStepper.h"
#include "widgets/FormCard.h"
#include "widgets/Hairline.h"
#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int margin = 20;
constexpr int buttonsInOneRowFrom = 560;

QLabel* makeNote() {
  auto* label = new QLabel;
  label->setFont(textFont(TextStyle::footnote));
  label->setForegroundRole(ThemeRole::secondaryText);
  label->setTextFormat(Qt::PlainText);
  return label;
}

QScrollArea* makeScrolling(QWidget* content) {
  auto* area = new QScrollArea;
  area->setFrameShape(QFrame::NoFrame);
  area->setWidgetResizable(true);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  // The bar draws nothing while there is nothing to scroll, but its room has to stay.
  area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  area->setFocusPolicy(Qt::NoFocus);
  content->layout()->setContentsMargins(margin, 4, margin - area->verticalScrollBar()->sizeHint().width(),
                                        margin);
  area->setWidget(content);
  // The window's background shows through.
  area->viewport()->setAutoFillBackground(false);
  content->setAutoFillBackground(false);
  return area;
}

} // namespace

ShortcutForm::ShortcutForm(ShortcutSettingsDraft& draft, const QString& location, Capabilities capabilities,
                           QWidget* parent)
    : QWidget(parent),
      m_draft(draft),
      m_capabilities(std::move(capabilities)),
      m_desktop(makeNote()),
      m_unsaved(makeNote()),
      m_buttons(new QBoxLayout(QBoxLayout::LeftToRight)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins({});
  column->setSpacing(0);
  column->addWidget(makeScrolling(makeCards()), 1);
  column->addWidget(new Hairline(Qt::Horizontal));
  column->addWidget(makeFileCard(location));
  connect(&m_draft, &ShortcutSettingsDraft::changed, this, &ShortcutForm::render);
  render();
}

QWidget* ShortcutForm::makeCards() {
  auto* cards = new QWidget;
  auto* column = new QVBoxLayout(cards);
  column->setSpacing(margin);
  auto* leader = new FormCard(QStringLiteral("Leader"));
  leader->addRow(new KeyRow(m_draft, ShortcutField::leader, QStringLiteral("Shortcut")));
  leader->addRow(new TimeoutStepper(m_draft));
  column->addWidget(leader);
  column->addWidget(
      makeKeyCard(QStringLiteral("Leader commands"), {ShortcutField::notlet, ShortcutField::archive}));
  column->addWidget(
      makeKeyCard(QStringLiteral("Archive navigation"),
                  {ShortcutField::search, ShortcutField::edit, ShortcutField::remove, ShortcutField::next,
                   ShortcutField::nextAlternate, ShortcutField::previous, ShortcutField::previousAlternate}));
  column->addWidget(makeDesktopCard());
  column->addStretch();
  return cards;
}

FormCard* ShortcutForm::makeKeyCard(const QString& title, std::initializer_list<ShortcutField> fields) {
  auto* card = new FormCard(title);
  for (const ShortcutField field : fields)
    card->addRow(new KeyRow(m_draft, field, QStringLiteral("Key")));
  return card;
}

FormCard* ShortcutForm::makeDesktopCard() {
  auto* card = new FormCard(QStringLiteral("On this desktop"));
  m_desktop->setFont(textFont(TextStyle::body));
  m_desktop->setForegroundRole(ThemeRole::primaryText);
  m_desktop->setWordWrap(true);
  m_desktop->setContentsMargins(cardPadding, 10, cardPadding, 10);
  card->addRow(m_desktop);
  return card;
}

QWidget* ShortcutForm::makeFileCard(const QString& location) {
  auto* path = new QLineEdit;
  path->setReadOnly(true);
  path->setText(location);
  path->setCursorPosition(0);
  path->setAccessibleName(QStringLiteral("Path of the config file"));
  auto* row = new QWidget;
  auto* column = new QVBoxLayout(row);
  column->setContentsMargins(8, 8, 8, 8);
  column->setSpacing(8);
  column->addWidget(path);
  column->addWidget(makeButtons());
  auto* card = new FormCard(QStringLiteral("Config file"));
  card->addRow(row);
  auto* framed = new QWidget;
  auto* frame = new QVBoxLayout(framed);
  frame->setContentsMargins(margin, 12, margin, margin);
  frame->addWidget(card);
  return framed;
}

QWidget* ShortcutForm::makeButtons() {
  const auto makePart = [this] {
    auto* part = new QHBoxLayout;
    part->setSpacing(8);
    m_buttons->addLayout(part);
    return part;
  };
  auto* row = new QWidget;
  m_buttons->setContentsMargins({});
  m_buttons->setSpacing(8);
  row->setLayout(m_buttons);
  using Look = TextButton::Look;
  QHBoxLayout* left = makePart();
  left->addWidget(
      makeButton(QStringLiteral("Open Config File"), Look::standard, &ShortcutSettingsDraft::openConfigFile));
  left->addWidget(makeButton(QStringLiteral("Reload"), Look::standard, &ShortcutSettingsDraft::reload));
  left->addStretch();
  QHBoxLayout* right = makePart();
  right->addStretch();
  right->addWidget(m_unsaved);
  right->addWidget(makeButton(QStringLiteral("Restore Defaults"), Look::standard,
                              &ShortcutSettingsDraft::restoreDefaults));
  right->addWidget(makeButton(QStringLiteral("Save"), Look::primary, &ShortcutSettingsDraft::save));
  return row;
}

TextButton* ShortcutForm::makeButton(const QString& text, TextButton::Look look,
                                     void (ShortcutSettingsDraft::*action)()) {
  auto* button = new TextButton(text, look);
  connect(button, &TextButton::clicked, &m_draft, action);
  return button;
}

// What no control of the form wants. A button with the keyboard takes Return for itself.
void ShortcutForm::keyPressEvent(QKeyEvent* event) {
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!isReturn || event->modifiers() & ~Qt::KeypadModifier)
    return QWidget::keyPressEvent(event);
  if (!event->isAutoRepeat())
    m_draft.save();
}

void ShortcutForm::showEvent(QShowEvent* event) {
  describeDesktop();
  QWidget::showEvent(event);
}

void ShortcutForm::resizeEvent(QResizeEvent* event) {
  m_buttons->setDirection(width() < buttonsInOneRowFrom ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
  QWidget::resizeEvent(event);
}

void ShortcutForm::describeDesktop() {
  const DesktopCapabilities capabilities = m_capabilities();
  QStringList sentences{fromUtf8(hotKeyNote(capabilities.hotKey))};
  for (const std::string& limit : desktopLimits(capabilities))
    sentences << fromUtf8(limit);
  m_desktop->setText(sentences.join(u'\n'));
}

void ShortcutForm::render() {
  m_unsaved->setText(m_draft.state().isUnsaved() ? QStringLiteral("Not saved") : QString());
}

} // namespace notlet
