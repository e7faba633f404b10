#include "themes/ui/CustomThemeEditor.h"

#include <QAccessible>
#include <QColorDialog>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <cmath>

#include "widgets/FormCard.h"
#include "widgets/Hairline.h"
#include "widgets/ScreenRoom.h"
#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr QSize smallestSize{420, 560};
constexpr int margin = 20;
constexpr int spacing = 12;
constexpr int sectionSpacing = 20;
constexpr int codeWidth = 96;

QString labelOf(ThemeColor color) {
  switch (color) {
  case ThemeColor::background:
    return CustomThemeEditor::tr("Background");
  case ThemeColor::surface:
    return CustomThemeEditor::tr("Surface");
  case ThemeColor::primaryText:
    return CustomThemeEditor::tr("Primary text");
  case ThemeColor::secondaryText:
    return CustomThemeEditor::tr("Secondary text");
  case ThemeColor::accent:
    return CustomThemeEditor::tr("Accent");
  case ThemeColor::alternateAccent:
    break;
  }
  return CustomThemeEditor::tr("Alternate accent");
}

QLabel* makeLabel(const QString& text, TextStyle style, QPalette::ColorRole role) {
  auto* label = new QLabel(text);
  label->setFont(textFont(style));
  label->setForegroundRole(role);
  return label;
}

QLabel* makeHint() {
  QLabel* hint = makeLabel({}, TextStyle::footnote, ThemeRole::primaryText);
  hint->setWordWrap(true);
  hint->setContentsMargins(cardPadding, 0, cardPadding, 0);
  hint->hide();
  return hint;
}

void setHint(QLabel* hint, const QString& text) {
  if (hint->text() == text)
    return;
  hint->setText(text);
  hint->setVisible(!text.isEmpty());
  if (text.isEmpty())
    return;
  QAccessibleEvent announcement(hint, QAccessible::Alert);
  QAccessible::updateAccessibility(&announcement);
}

QWidget* makeRow(std::initializer_list<QWidget*> controls) {
  auto* row = new QWidget;
  auto* line = new QHBoxLayout(row);
  line->setContentsMargins(cardPadding, 6, cardPadding, 6);
  line->setSpacing(spacing);
  for (QWidget* control : controls)
    line->addWidget(control);
  return row;
}

/// The text colours that the program does not show as they are chosen.
QStringList strengthenedTexts(const AppTheme& theme) {
  const QPalette palette = themePalette(theme, {});
  QStringList names;
  for (const auto& [color, role] : {std::pair(ThemeColor::primaryText, ThemeRole::primaryText),
                                    std::pair(ThemeColor::secondaryText, ThemeRole::secondaryText)}) {
    if (palette.color(role) != colorFromHex(codeOf(theme, color)))
      names.append(labelOf(color).toLower());
  }
  return names;
}

QString contrastText(double contrast) {
  constexpr double tenths = 10;
  // Rounded down: what is too little must not look like enough.
  return QString::number(std::floor(contrast * tenths) / tenths, 'f', 1);
}

} // namespace

CustomThemeEditor::CustomThemeEditor(const AppTheme& theme, std::function<void(const AppTheme&)> onSave,
                                     QWidget* parent)
    : QDialog(parent),
      m_draft(theme),
      m_onSave(std::move(onSave)),
      m_name(new QLineEdit),
      m_dark(new QCheckBox),
      m_codeHint(makeHint()),
      m_preview(new ThemePreview),
      m_contrastHint(makeHint()),
      m_save(new TextButton(tr("Save"), TextButton::Look::primary)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setAttribute(Qt::WA_WindowPropagation);
  setWindowTitle(tr("Custom Theme"));
  layOut();
  connect(&m_draft, &CustomThemeDraft::changed, this, &CustomThemeEditor::render);
  render();
  m_name->setFocus();
  m_name->selectAll();
}

void CustomThemeEditor::layOut() {
  auto* scroll = new QScrollArea;
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidgetResizable(true);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  // The bar draws nothing while there is nothing to scroll; nothing moves aside when a hint makes it needed.
  scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  scroll->setFocusPolicy(Qt::NoFocus);
  scroll->viewport()->setBackgroundRole(ThemeRole::background);
  scroll->setWidget(makeForm(margin - scroll->verticalScrollBar()->sizeHint().width()));
  scroll->widget()->setBackgroundRole(ThemeRole::background);

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(scroll, 1);
  column->addWidget(new Hairline(Qt::Horizontal));
  QLayout* buttons = makeButtons();
  column->addLayout(buttons);
  fitToScreen(scroll->widget()->sizeHint().height() + buttons->sizeHint().height() + 1);
}

/// As high as all of the form, but no larger than the screen has room for.
void CustomThemeEditor::fitToScreen(int wholeHeight) {
  const QSize room = roomOnScreen(*this);
  setMinimumSize(smallestSize.boundedTo(room));
  resize(QSize(smallestSize.width() + margin, std::max(wholeHeight, smallestSize.height())).boundedTo(room));
}

QWidget* CustomThemeEditor::makeForm(int rightMargin) {
  auto* form = new QWidget;
  auto* column = new QVBoxLayout(form);
  column->setContentsMargins(margin, margin, rightMargin, spacing);
  column->setSpacing(sectionSpacing);
  column->addWidget(makeLabel(windowTitle(), TextStyle::title, ThemeRole::primaryText));
  column->addWidget(makeThemeSection());
  column->addWidget(makeColorSection());
  column->addWidget(makePreviewSection());
  column->addStretch();
  return form;
}

QWidget* CustomThemeEditor::makeThemeSection() {
  auto* card = new FormCard(tr("Theme"));
  QLabel* nameLabel = makeLabel(tr("Name"), TextStyle::body, ThemeRole::primaryText);
  nameLabel->setBuddy(m_name);
  m_name->setAccessibleName(tr("Name"));
  m_dark->setText(tr("Dark appearance"));
  card->addRow(makeRow({nameLabel, m_name}));
  card->addRow(makeRow({m_dark}));
  connect(m_name, &QLineEdit::textChanged, &m_draft,
          [this](const QString& text) { m_draft.setName(toUtf8(text)); });
  connect(m_dark, &QCheckBox::toggled, &m_draft, &CustomThemeDraft::setDark);
  return card;
}

QWidget* CustomThemeEditor::makeColorSection() {
  auto* card = new FormCard(tr("Colors"));
  for (const ThemeColor color : allThemeColors)
    card->addRow(makeColorRow(color));
  auto* section = new QWidget;
  auto* column = new QVBoxLayout(section);
  column->setContentsMargins({});
  column->setSpacing(spacing);
  column->addWidget(card);
  column->addWidget(m_codeHint);
  return section;
}

QWidget* CustomThemeEditor::makeColorRow(ThemeColor color) {
  const QString name = labelOf(color);
  QLabel* label = makeLabel(name, TextStyle::body, ThemeRole::primaryText);
  label->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  auto* code = new QLineEdit;
  code->setFixedWidth(codeWidth);
  code->setAccessibleName(tr("%1 code").arg(name));
  auto* well = new ColorWell(name);
  connect(code, &QLineEdit::textChanged, &m_draft,
          [this, color](const QString& text) { m_draft.typeCode(color, toUtf8(text)); });
  connect(well, &ColorWell::clicked, this, [this, color] { pickColor(color); });
  m_colors.at(static_cast<std::size_t>(color)) = {code, well};
  return makeRow({label, code, well});
}

QWidget* CustomThemeEditor::makePreviewSection() {
  auto* section = new QWidget;
  auto* column = new QVBoxLayout(section);
  column->setContentsMargins({});
  column->setSpacing(8);
  column->addWidget(FormCard::makeHeading(tr("Preview")));
  column->addWidget(m_preview);
  column->addWidget(m_contrastHint);
  // Its room is there before it is needed: a hint below the end of the sheet would be overlooked.
  QSizePolicy policy = m_contrastHint->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  m_contrastHint->setSizePolicy(policy);
  m_contrastHint->setMinimumHeight(3 * m_contrastHint->fontMetrics().lineSpacing());
  m_contrastHint->setAlignment(Qt::AlignTop);
  return section;
}

QLayout* CustomThemeEditor::makeButtons() {
  auto* cancel = new TextButton(tr("Cancel"), TextButton::Look::standard);
  auto* row = new QHBoxLayout;
  row->setContentsMargins(margin, spacing, margin, spacing);
  row->setSpacing(8);
  row->addStretch();
  row->addWidget(cancel);
  row->addWidget(m_save);
  connect(cancel, &TextButton::clicked, this, &CustomThemeEditor::reject);
  connect(m_save, &TextButton::clicked, this, &CustomThemeEditor::save);
  connect(m_name, &QLineEdit::returnPressed, m_save, &TextButton::click);
  return row;
}

void CustomThemeEditor::render() {
  const AppTheme& theme = m_draft.state().theme;
  const auto setText = [](QLineEdit* line, const QString& text) {
    if (line->text() != text)
      line->setText(text);
  };
  setText(m_name, fromUtf8(theme.name));
  m_dark->setChecked(theme.isDark);
  for (const ThemeColor color : allThemeColors) {
    const auto& [code, well] = m_colors.at(static_cast<std::size_t>(color));
    setText(code, fromUtf8(m_draft.typedCode(color)));
    well->setColor(colorFromHex(codeOf(theme, color)));
  }
  m_preview->setTheme(theme);
  m_save->setEnabled(m_draft.canSave());
  renderHints();
}

void CustomThemeEditor::renderHints() {
  const bool areCodes =
      std::ranges::all_of(allThemeColors, [this](ThemeColor color) { return m_draft.isCode(color); });
  setHint(m_codeHint, areCodes ? QString() : tr("A color code has three or six digits from 0 to F."));
  setHint(m_contrastHint, contrastHint());
}

QString CustomThemeEditor::contrastHint() const {
  QStringList sentences;
  QStringList faint;
  for (const auto& [color, contrast] : m_draft.faintTexts())
    faint.append(tr("%1 (%2:1)").arg(labelOf(color).toLower(), contrastText(contrast)));
  if (!faint.isEmpty())
    sentences.append(
        tr("Hard to read on the background, below 4.5:1: %1.").arg(faint.join(QStringLiteral(", "))));
  const QStringList strengthened = strengthenedTexts(m_draft.state().theme);
  if (!strengthened.isEmpty())
    sentences.append(tr("Notlet shows %1 stronger than chosen.")
                         .arg(strengthened.size() > 1 ? tr("both texts") : strengthened.front()));
  return sentences.join(u' ');
}

void CustomThemeEditor::pickColor(ThemeColor color) {
  auto* dialog = new QColorDialog(colorFromHex(codeOf(m_draft.state().theme, color)), this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setWindowTitle(labelOf(color));
  connect(dialog, &QColorDialog::colorSelected, &m_draft, [this, color](const QColor& picked) {
    m_draft.setColor(color, Rgb::fromComponents(picked.redF(), picked.greenF(), picked.blueF()));
  });
  dialog->open();
}

void CustomThemeEditor::save() {
  if (!m_draft.canSave())
    return;
  accept();
  m_onSave(m_draft.themeToSave());
}

} // namespace notlet
