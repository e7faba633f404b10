#include "shortcuts/ui/SettingsWindow.h"

#include <QCloseEvent>
#include <QVBoxLayout>

#include "widgets/NoticeBar.h"
#include "widgets/ScreenRoom.h"
#include "widgets/TextConversion.h"

namespace notlet {

namespace {

constexpr QSize usualSize{620, 620};
constexpr QSize smallestSize{360, 420};

} // namespace

SettingsWindow::SettingsWindow(AppSettings& themes, SettingsScreen& screen, ShortcutSettingsDraft& draft,
                               QWidget* content)
    : m_themes(themes),
      m_screen(screen),
      m_draft(draft),
      m_container(new AppThemeContainer(themes, framed(content))) {
  setWindowTitle(QStringLiteral("Notlet Settings"));
  setMinimumSize(smallestSize.boundedTo(roomOnScreen(*this)));
  resize(usualSize.boundedTo(roomOnScreen(*this)));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->addWidget(m_container);
  connect(&m_screen, &SettingsScreen::changed, this, &SettingsWindow::render);
  connect(&m_draft, &ShortcutSettingsDraft::changed, this, &SettingsWindow::renderMessage);
}

/// The content below the notice that themes are not stored.
QWidget* SettingsWindow::framed(QWidget* content) {
  auto* notice = new NoticeBar;
  auto* frame = new QWidget;
  auto* rows = new QVBoxLayout(frame);
  rows->setContentsMargins({});
  rows->setSpacing(0);
  rows->addWidget(notice);
  rows->addWidget(content, 1);
  const auto show = [this, notice] { notice->setText(fromUtf8(m_themes.warning())); };
  connect(&m_themes, &AppSettings::warningChanged, notice, show);
  connect(notice, &NoticeBar::dismissed, &m_themes, &AppSettings::dismissWarning);
  show();
  return frame;
}

void SettingsWindow::reveal() {
  setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
}

void SettingsWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  m_screen.close();
}

void SettingsWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange)
    m_screen.setActive(isActiveWindow());
  QWidget::changeEvent(event);
}

void SettingsWindow::render() {
  setVisible(m_screen.state().isShown);
  renderMessage();
  renderQuestion();
}

// A message that is gone or has become another takes its alert away, which is no answer to the new one.
void SettingsWindow::renderMessage() {
  const bool isShown = m_screen.state().isShown;
  const QString text = isShown ? fromUtf8(m_draft.state().alert.value_or("")) : QString();
  if (m_message && m_message->accessibleDescription() == text)
    return;
  if (m_message) {
    m_message->disconnect(&m_draft);
    m_message->close();
    m_message.clear();
  }
  if (text.isEmpty())
    return;
  m_message = Alert::message(m_container, QStringLiteral("Shortcut Settings"), text);
  connect(m_message, &Alert::finished, &m_draft, &ShortcutSettingsDraft::dismissAlert);
  m_message->open();
}

void SettingsWindow::renderQuestion() {
  if (!m_screen.state().asksToDiscard) {
    if (m_question)
      m_question->close();
    m_question.clear();
    return;
  }
  if (m_question)
    return;
  m_question = Alert::destructiveQuestion(m_container, QStringLiteral("Discard the changes?"),
                                          QStringLiteral("The shortcuts that you changed are not saved yet."),
                                          QStringLiteral("Discard"));
  connect(m_question, &Alert::accepted, &m_screen, &SettingsScreen::discardAndClose);
  connect(m_question, &Alert::rejected, &m_screen, &SettingsScreen::keepOpen);
  m_question->open();
}

} // namespace notlet
