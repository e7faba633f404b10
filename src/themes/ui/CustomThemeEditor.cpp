#include "themes/ui/CustomThemeEditor.h"

#include <QColorDialog>
#include <QGridLayout>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>
#include <cmath>

#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr QSize smallestSize{420, 560};
constexpr int margin = 20;
constexpr int spacing = 12;
constexpr int codeWidth = 96;
constexpr double cardRadius = 10;

/// A group of the form, on a surface.
class FormCard : public QWidget {
 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().brush(ThemeRole::surface));
    painter.drawRoundedRect(rect(), cardRadius, cardRadius);
  }
};

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
  hint->hide();
  return hint;
}

void setHint(QLabel* hint, const QString& text) {
  hint->setText(text);
  hint->setVisible(!text.isEmpty());
}

QWidget* withHeading(const QString& heading, QWidget* content) {
  auto* section = new QWidget;
  auto* column = new QVBoxLayout(section);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(6);
  column->addWidget(makeLabel(heading, TextStyle::footnote, ThemeRole::secondaryText));
  column->addWidget(content);
  return section;
}

QGridLayout* makeGrid(QWidget* card) {
  auto* grid = new QGridLayout(card);
  grid->setContentsMargins(14, 10, 14, 10);
  grid->setHorizontalSpacing(spacing);
  grid->setVerticalSpacing(8);
  grid->setColumnStretch(0, 1);
  return grid;
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
  setMinimumSize(smallestSize);
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
  scroll->setFocusPolicy(Qt::NoFocus);
  scroll->viewport()->setBackgroundRole(ThemeRole::background);
  scroll->setWidget(makeForm());
  scroll->widget()->setBackgroundRole(ThemeRole::background);

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(scroll, 1);
  column->addLayout(makeButtons());
  resize(smallestSize.width() + margin, scroll->widget()->sizeHint().height() + 64);
}

QWidget* CustomThemeEditor::makeForm() {
  auto* form = new QWidget;
  auto* column = new QVBoxLayout(form);
  column->setContentsMargins(margin, margin, margin, spacing);
  column->setSpacing(spacing);
  column->addWidget(makeLabel(windowTitle(), TextStyle::title, ThemeRole::primaryText));
  column->addWidget(makeThemeSection());
  column->addWidget(makeColorSection());
  column->addWidget(makePreviewSection());
  column->addStretch();
  return form;
}

QWidget* CustomThemeEditor::makeThemeSection() {
  auto* card = new FormCard;
  QGridLayout* grid = makeGrid(card);
  QLabel* nameLabel = makeLabel(tr("Name"), TextStyle::body, ThemeRole::primaryText);
  nameLabel->setBuddy(m_name);
  m_name->setAccessibleName(tr("Name"));
  m_dark->setText(tr("Dark appearance"));
  grid->setColumnStretch(0, 0);
  grid->setColumnStretch(1, 1);
  grid->addWidget(nameLabel, 0, 0);
  grid->addWidget(m_name, 0, 1);
  grid->addWidget(m_dark, 1, 0, 1, 2);
  connect(m_name, &QLineEdit::textChanged, &m_draft,
          [this](const QString& text) { m_draft.setName(toUtf8(text)); });
  connect(m_dark, &QCheckBox::toggled, &m_draft, &CustomThemeDraft::setDark);
  return withHeading(tr("Theme"), card);
}

QWidget* CustomThemeEditor::makeColorSection() {
  auto* card = new FormCard;
  QGridLayout* grid = makeGrid(card);
  int line = 0;
  for (const ThemeColor color : allThemeColors) {
    const QString name = labelOf(color);
    auto* code = new QLineEdit;
    code->setFixedWidth(codeWidth);
    code->setAccessibleName(tr("%1 code").arg(name));
    auto* well = new ColorWell(name);
    grid->addWidget(makeLabel(name, TextStyle::body, ThemeRole::primaryText), line, 0);
    grid->addWidget(code, line, 1);
    grid->addWidget(well, line++, 2);
    connect(code, &QLineEdit::textChanged, &m_draft,
            [this, color](const QString& text) { m_draft.typeCode(color, toUtf8(text)); });
    connect(well, &ColorWell::clicked, this, [this, color] { pickColor(color); });
    m_colors.at(static_cast<std::size_t>(color)) = {code, well};
  }
  grid->addWidget(m_codeHint, line, 0, 1, 3);
  return withHeading(tr("Colors"), card);
}

QWidget* CustomThemeEditor::makePreviewSection() {
  auto* content = new QWidget;
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(spacing);
  column->addWidget(m_preview);
  column->addWidget(m_contrastHint);
  // Its room is there before it is needed: a hint below the end of the sheet would be overlooked.
  QSizePolicy policy = m_contrastHint->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  m_contrastHint->setSizePolicy(policy);
  m_contrastHint->setMinimumHeight(2 * m_contrastHint->fontMetrics().lineSpacing());
  m_contrastHint->setAlignment(Qt::AlignTop);
  return withHeading(tr("Preview"), content);
}

QLayout* CustomThemeEditor::makeButtons() {
  auto* cancel = new TextButton(tr("Cancel"), TextButton::Look::standard);
  auto* row = new QHBoxLayout;
  row->setContentsMargins(margin, spacing, margin, spacing + 4);
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
  QStringList texts;
  for (const auto& [color, contrast] : m_draft.faintTexts())
    texts.append(tr("%1 (%2:1)").arg(labelOf(color).toLower(), contrastText(contrast)));
  setHint(m_contrastHint, texts.isEmpty()
                              ? QString()
                              : tr("Hard to read on the background: %1. A contrast of 4.5:1 is needed.")
                                    .arg(texts.join(QStringLiteral(", "))));
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
