#include "shortcuts/ui/KeyRow.h"

#include <QAccessible>
#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "shortcuts/ShortcutWarnings.h"
#include "widgets/FormCard.h"
#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int narrowestField = 88;
constexpr int widestField = 148;

} // namespace

KeyRow::KeyRow(ShortcutSettingsDraft& draft, ShortcutField field, const QString& placeholder, QWidget* parent)
    : QWidget(parent),
      m_draft(draft),
      m_field(field),
      m_edit(new QLineEdit),
      m_record(new TextButton(QStringLiteral("Press a key"), TextButton::Look::standard)),
      m_note(new QLabel) {
  const QString name = fromUtf8(title(field));
  m_edit->setPlaceholderText(placeholder);
  m_edit->setAccessibleName(name);
  m_edit->setMinimumWidth(narrowestField);
  m_edit->setMaximumWidth(widestField);
  m_edit->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  m_record->setFont(textFont(TextStyle::subheadline));
  m_record->setFixedWidth(m_record->sizeHint().width());
  m_record->installEventFilter(this);
  m_note->setFont(textFont(TextStyle::footnote));
  m_note->setForegroundRole(ThemeRole::secondaryText);
  m_note->setTextFormat(Qt::PlainText);
  m_note->setWordWrap(true);
  m_note->setAlignment(Qt::AlignRight);
  m_note->hide();
  layOut();
  connect(m_edit, &QLineEdit::textEdited, &m_draft,
          [this](const QString& text) { m_draft.setText(m_field, toUtf8(text)); });
  connect(m_record, &TextButton::clicked, this, [this] {
    m_record->setFocus(); // No input method may take the key, and none that is typed goes to a field.
    m_draft.toggleRecording(m_field);
  });
  connect(&m_draft, &ShortcutSettingsDraft::changed, this, &KeyRow::render);
  render();
}

void KeyRow::layOut() {
  auto* label = new QLabel(fromUtf8(title(m_field)));
  label->setFont(textFont(TextStyle::body));
  label->setWordWrap(true);
  auto* line = new QHBoxLayout;
  line->setSpacing(8);
  line->addWidget(label, 1);
  line->addWidget(m_edit);
  line->addWidget(m_record);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(cardPadding, 6, 8, 6);
  column->setSpacing(4);
  column->addLayout(line);
  column->addWidget(m_note);
}

// Who goes elsewhere while a key is asked for means to press none.
bool KeyRow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusOut && m_draft.state().recording == m_field)
    m_draft.stopRecording();
  return QWidget::eventFilter(watched, event);
}

void KeyRow::render() {
  const ShortcutSettingsDraft::State& state = m_draft.state();
  const QString text = fromUtf8(valueOf(state.draft, m_field));
  if (m_edit->text() != text)
    m_edit->setText(text);
  const bool isRecording = state.recording == m_field;
  m_record->setText(isRecording ? QStringLiteral("Press a key") : QStringLiteral("Record"));
  m_record->setAccessibleName(
      (isRecording ? QStringLiteral("Press the key for %1") : QStringLiteral("Record key for %1"))
          .arg(fromUtf8(title(m_field))));
  m_record->update();
  renderNote(isRecording);
}

void KeyRow::renderNote(bool isRecording) {
  const ShortcutSettingsDraft::State& state = m_draft.state();
  const QString note = fromUtf8(isRecording ? state.recordingProblem : shortcutWarning(state.draft, m_field));
  if (m_note->text() == note)
    return;
  m_note->setText(note);
  m_note->setVisible(!note.isEmpty());
  m_edit->setAccessibleDescription(note);
  if (note.isEmpty() || !isVisible())
    return;
  QAccessibleEvent announcement(m_note, QAccessible::Alert);
  QAccessible::updateAccessibility(&announcement);
}

} // namespace notlet
