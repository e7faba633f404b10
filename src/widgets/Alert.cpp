#include "widgets/Alert.h"

#include <QAccessibleWidget>
#include <QBoxLayout>
#include <QCoreApplication>
#include <QLabel>

#include "widgets/TextButton.h"
#include "widgets/TextConversion.h"
#include "widgets/ThemePalette.h"

namespace notlet {

namespace {

constexpr int textWidth = 320;

QLabel* makeLabel(const QString& text, TextStyle style) {
  const QFont font = textFont(style);
  auto* label = new QLabel(breakable(text, QFontMetrics(font), textWidth));
  label->setAccessibleName(text);
  label->setTextFormat(Qt::PlainText);
  label->setFont(font);
  label->setWordWrap(true);
  label->setFixedWidth(textWidth);
  return label;
}

/// A dialog that assistive technology reads out as soon as it appears.
QAccessibleInterface* accessibleAlert(const QString&, QObject* object) {
  auto* alert = qobject_cast<Alert*>(object);
  return alert ? new QAccessibleWidget(alert, QAccessible::AlertMessage) : nullptr;
}

} // namespace

Alert::Alert(QWidget* parent, const QString& title, const QString& text)
    : QDialog(parent), m_rows(new QVBoxLayout(this)), m_buttons(new QHBoxLayout) {
  [[maybe_unused]] static const bool isInstalled = (QAccessible::installFactory(accessibleAlert), true);
  setAttribute(Qt::WA_DeleteOnClose);
  setAttribute(Qt::WA_WindowPropagation);
  setWindowTitle(QCoreApplication::applicationName());
  setAccessibleName(title);
  setAccessibleDescription(text);

  m_rows->setContentsMargins(24, 24, 24, 20);
  m_rows->setSpacing(8);
  m_rows->setSizeConstraint(QLayout::SetFixedSize);
  m_rows->addWidget(makeLabel(title, TextStyle::headline));
  m_rows->addWidget(makeLabel(text, TextStyle::body));
  m_rows->addSpacing(12);
  m_rows->addLayout(m_buttons);
  m_buttons->setSpacing(8);
  m_buttons->addStretch();
}

QLabel* Alert::addBelowText(const QString& text, TextStyle style) {
  auto* label = makeLabel(text, style);
  constexpr int belowTheText = 2;
  m_rows->insertWidget(belowTheText, label);
  return label;
}

Alert* Alert::message(QWidget* parent, const QString& title, const QString& text, const QString& reason) {
  auto* alert = new Alert(parent, title, text);
  if (!reason.isEmpty())
    alert->addBelowText(reason, TextStyle::caption)->setForegroundRole(ThemeRole::secondaryText);
  auto* ok = new TextButton(tr("OK"), TextButton::Look::primary);
  alert->m_buttons->addWidget(ok);
  connect(ok, &TextButton::clicked, alert, &Alert::accept);
  ok->setFocus();
  return alert;
}

Alert* Alert::destructiveQuestion(QWidget* parent, const QString& title, const QString& text,
                                  const QString& action, const QString& subject) {
  auto* alert = new Alert(parent, title, text);
  // What is to be read before the answer is no small print.
  if (!subject.isEmpty())
    alert->addBelowText(subject, TextStyle::body);
  auto* cancel = new TextButton(tr("Cancel"), TextButton::Look::standard);
  auto* confirm = new TextButton(action, TextButton::Look::destructive);
  alert->m_buttons->addWidget(cancel);
  alert->m_buttons->addWidget(confirm);
  connect(cancel, &TextButton::clicked, alert, &Alert::reject);
  connect(confirm, &TextButton::clicked, alert, &Alert::accept);
  cancel->setFocus();
  return alert;
}

} // namespace notlet
