#include "shortcuts/SettingsScreen.h"

namespace notlet {

SettingsScreen::SettingsScreen(ShortcutSettingsDraft& draft, const FocusedControl& focusedControl,
                               QObject* parent)
    : QObject(parent), m_draft(draft), m_focusedControl(focusedControl) {
}

void SettingsScreen::setState(const State& state) {
  if (m_state == state)
    return;
  m_state = state;
  Q_EMIT changed();
}

void SettingsScreen::open() {
  if (!m_state.isShown)
    m_draft.reload();
  State state = m_state;
  state.isShown = true;
  setState(state);
}

void SettingsScreen::close() {
  if (!m_draft.state().isUnsaved())
    return hide();
  State state = m_state;
  state.asksToDiscard = true;
  setState(state);
}

void SettingsScreen::discardAndClose() {
  hide();
}

void SettingsScreen::keepOpen() {
  State state = m_state;
  state.asksToDiscard = false;
  setState(state);
}

void SettingsScreen::hide() {
  m_draft.stopRecording();
  State state = m_state;
  state.isShown = false;
  state.isActive = false;
  state.asksToDiscard = false;
  setState(state);
}

void SettingsScreen::select(Tab tab) {
  m_draft.stopRecording();
  State state = m_state;
  state.tab = tab;
  setState(state);
}

void SettingsScreen::setActive(bool isActive) {
  State state = m_state;
  state.isActive = isActive && state.isShown;
  setState(state);
}

bool SettingsScreen::handle(const KeyPress& press) {
  if (!m_state.isActive)
    return false;
  if (m_draft.record(press))
    return true;
  return press.keyCode == KeyCode::escape && !press.isRepeat && (press.modifiers & KeyModifier::mask) == 0 &&
         escape();
}

// In the search for themes Escape first leaves the field. Who wants to leave with keys that are not saved is
// shown them.
bool SettingsScreen::escape() {
  if (m_state.tab == Tab::themes && m_focusedControl.isTextInputFocused())
    return false;
  if (m_draft.state().isUnsaved())
    select(Tab::shortcuts);
  else
    hide();
  return true;
}

} // namespace notlet
