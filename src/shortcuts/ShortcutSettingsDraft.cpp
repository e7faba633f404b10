#include "shortcuts/ShortcutSettingsDraft.h"

#include <algorithm>
#include <utility>

#include "shortcuts/KeyRecording.h"

namespace notlet {

bool ShortcutSettingsDraft::State::canRaiseTimeout() const {
  return draft.leaderTimeoutMilliseconds < longestTimeout;
}

bool ShortcutSettingsDraft::State::canLowerTimeout() const {
  return draft.leaderTimeoutMilliseconds > shortestTimeout;
}

ShortcutSettingsDraft::ShortcutSettingsDraft(MacShortcutSettings& settings, QObject* parent)
    : QObject(parent),
      m_settings(settings),
      m_state{settings.config(), settings.config(), {}, {}, settings.errorMessage()} {
  connect(&m_settings, &MacShortcutSettings::changed, this, &ShortcutSettingsDraft::follow);
}

template<typename Change>
void ShortcutSettingsDraft::change(const Change& apply) {
  const State before = m_state;
  apply(m_state);
  if (m_state != before)
    Q_EMIT changed();
}

// What was typed stays, but a form that nobody touched must not write an older state of the file back over
// what was edited by hand.
void ShortcutSettingsDraft::follow() {
  change([this](State& state) {
    const bool isUnsaved = state.isUnsaved();
    state.inForce = m_settings.config();
    if (!isUnsaved)
      state.draft = state.inForce;
    state.alert = m_settings.errorMessage();
  });
}

void ShortcutSettingsDraft::takeInForce() {
  change([this](State& state) {
    state.inForce = m_settings.config();
    state.draft = state.inForce;
    state.recording.reset();
    state.recordingProblem.clear();
  });
}

void ShortcutSettingsDraft::setText(ShortcutField field, std::string text) {
  change([&](State& state) { setValue(state.draft, field, std::move(text)); });
}

void ShortcutSettingsDraft::raiseTimeout() {
  if (!m_state.canRaiseTimeout())
    return;
  change([](State& state) {
    std::int64_t& timeout = state.draft.leaderTimeoutMilliseconds;
    timeout = std::clamp(timeout + timeoutStep, shortestTimeout, longestTimeout);
  });
}

void ShortcutSettingsDraft::lowerTimeout() {
  if (!m_state.canLowerTimeout())
    return;
  change([](State& state) {
    std::int64_t& timeout = state.draft.leaderTimeoutMilliseconds;
    timeout = std::clamp(timeout - timeoutStep, shortestTimeout, longestTimeout);
  });
}

void ShortcutSettingsDraft::save() {
  m_settings.save(m_state.draft);
}

void ShortcutSettingsDraft::reload() {
  m_settings.reload();
  takeInForce();
}

void ShortcutSettingsDraft::restoreDefaults() {
  m_settings.save(MacShortcutConfig::defaults());
  takeInForce();
}

void ShortcutSettingsDraft::openConfigFile() {
  m_settings.openConfigFile();
}

void ShortcutSettingsDraft::dismissAlert() {
  m_settings.setErrorMessage(std::nullopt);
}

void ShortcutSettingsDraft::toggleRecording(ShortcutField field) {
  if (m_state.recording == field)
    return stopRecording();
  change([field](State& state) {
    state.recording = field;
    state.recordingProblem.clear();
  });
}

void ShortcutSettingsDraft::stopRecording() {
  change([](State& state) {
    state.recording.reset();
    state.recordingProblem.clear();
  });
}

bool ShortcutSettingsDraft::record(const KeyPress& press) {
  const std::optional<ShortcutField> field = m_state.recording;
  // The key that asked for a recording is no answer to it, and one that was recorded has done its work.
  if (press.isRepeat)
    return field || m_isRecordedKeyHeld;
  m_isRecordedKeyHeld = field.has_value();
  if (!field)
    return false;
  if (press.keyCode == KeyCode::escape && (press.modifiers & KeyModifier::mask) == 0) {
    stopRecording();
    return true;
  }
  Result<std::string> key = recordedKey(*field, press);
  change([&](State& state) {
    state.recordingProblem = key ? std::string() : key.error().message;
    if (!key)
      return;
    setValue(state.draft, *field, *std::move(key));
    state.recording.reset();
  });
  return true;
}

} // namespace notlet
