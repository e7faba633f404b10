#include "shortcuts/ui/TimeoutStepper.h"

#include <QHBoxLayout>

#include "widgets/FormCard.h"
#include "widgets/TextStyle.h"

namespace notlet {

TimeoutStepper::TimeoutStepper(ShortcutSettingsDraft& draft, QWidget* parent)
    : QWidget(parent),
      m_draft(draft),
      m_label(new QLabel),
      m_lower(makeButton(QStringLiteral("−"), QStringLiteral("Shorten timeout"),
                         &ShortcutSettingsDraft::lowerTimeout)),
      m_raise(makeButton(QStringLiteral("+"), QStringLiteral("Lengthen timeout"),
                         &ShortcutSettingsDraft::raiseTimeout)) {
  m_label->setFont(textFont(TextStyle::body));
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(cardPadding, 6, 8, 6);
  row->setSpacing(4);
  row->addWidget(m_label, 1);
  row->addWidget(m_lower);
  row->addWidget(m_raise);
  connect(&m_draft, &ShortcutSettingsDraft::changed, this, &TimeoutStepper::render);
  render();
}

TextButton* TimeoutStepper::makeButton(const QString& text, const QString& name,
                                       void (ShortcutSettingsDraft::*step)()) {
  auto* button = new TextButton(text, TextButton::Look::standard);
  button->setAccessibleName(name);
  button->setToolTip(name);
  button->setAutoRepeat(true);
  connect(button, &TextButton::clicked, &m_draft, step);
  return button;
}

void TimeoutStepper::render() {
  const ShortcutSettingsDraft::State& state = m_draft.state();
  m_label->setText(QStringLiteral("Timeout: %1 ms").arg(state.draft.leaderTimeoutMilliseconds));
  m_lower->setEnabled(state.canLowerTimeout());
  m_raise->setEnabled(state.canRaiseTimeout());
  for (TextButton* button : {m_lower, m_raise})
    button->setAccessibleDescription(m_label->text());
}

} // namespace notlet
