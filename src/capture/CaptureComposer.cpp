#include "capture/CaptureComposer.h"

#include <chrono>

#include "core/HashtagParser.h"
#include "core/NotletEntry.h"
#include "core/Text.h"

namespace notlet {

namespace {

constexpr std::chrono::milliseconds confirmationTime{1200};
constexpr std::size_t suggestionLimit = 8;
constexpr std::string_view quickCaptureWidget = "NotletMacQuickCapture";

struct FocusCommands {
  std::vector<CommandName> take;
  CommandName giveUp;
};

FocusCommands focusCommandsOf(CaptureComposer::Surface surface) {
  if (surface == CaptureComposer::Surface::quickCapture)
    return {{CommandName::focusMacCaptureInput}, CommandName::stopMacFloatingCapture};
  return {{CommandName::showMacCapture, CommandName::focusMacNotletInput}, CommandName::enterMacFloatingMode};
}

} // namespace

bool CaptureComposer::State::canSave() const {
  return !trimmed(input).empty();
}

CaptureComposer::CaptureComposer(const Surroundings& surroundings, Surface surface, QObject* parent)
    : QObject(parent),
      m_surroundings(surroundings),
      m_surface(surface),
      m_speechRecognizer(surroundings.speechService, surroundings.preferredLanguages) {
  observeCommands();
  followRecognizer();
  // The used hashtags may have changed.
  connect(&m_surroundings.modelContext, &ModelContext::listChanged, this, &CaptureComposer::changed);
  connect(&m_surroundings.draftKeeper, &DraftKeeper::reported, this,
          [this](const std::string& reason) { update([&](State& state) { state.draftWarning = reason; }); });
}

void CaptureComposer::observeCommands() {
  auto& center = m_surroundings.notificationCenter;
  const FocusCommands commands = focusCommandsOf(m_surface);
  for (const CommandName name : commands.take)
    center.observe(name, this, [this](const CommandObject&) { setInputFocused(true); });
  center.observe(commands.giveUp, this, [this](const CommandObject&) {
    stopDictation();
    setInputFocused(false);
  });
}

std::vector<std::string> CaptureComposer::suggestions() const {
  const auto partial = HashtagParser::inProgressHashtag(m_state.input);
  if (!partial)
    return {};
  return m_surroundings.modelContext.tallies().suggestions(*partial, suggestionLimit);
}

void CaptureComposer::appear() {
  if (!m_draftIsRestored)
    restoreDraft();
  setInputFocused(true);
}

void CaptureComposer::restoreDraft() {
  m_draftIsRestored = true;
  auto draft = m_surroundings.draftKeeper.restore();
  if (draft)
    return setInput(std::move(*draft));
  update([&](State& state) { state.draftNotice = draft.error().message; });
}

void CaptureComposer::setInput(std::string input) {
  // Until the microphone is open the words go behind whatever stands there by then.
  if (m_state.dictation == Dictation::recording || m_speechRecognizer.isStarting())
    stopDictation();
  write(std::move(input));
}

void CaptureComposer::write(std::string input) {
  if (input == m_state.input)
    return;
  m_state.input = std::move(input);
  ++m_inputRevision;
  m_surroundings.draftKeeper.keep(m_state.input);
  Q_EMIT changed();
}

void CaptureComposer::setInputFocused(bool focused) {
  update([&](State& state) { state.inputFocused = focused; });
}

void CaptureComposer::save() {
  stopDictation();
  auto notlet = makeNotlet(m_state.input, m_surroundings.clock.now());
  if (!notlet)
    return;
  auto& context = m_surroundings.modelContext;
  context.insert(std::move(*notlet));
  if (const auto saved = context.save(); !saved) {
    context.rollback();
    update([&](State& state) {
      state.saveError = "Your draft is still here. Please try again.";
      state.saveFailureReason = saved.error().message;
    });
    return;
  }
  if (m_surface == Surface::quickCapture && m_surroundings.widgetTimelines)
    m_surroundings.widgetTimelines->reload(quickCaptureWidget);
  setInput({});
  confirm();
}

// A second save does not prolong the first one's confirmation: the first to finish hides it.
void CaptureComposer::confirm() {
  update([](State& state) { state.showConfirmation = true; });
  m_surroundings.scheduler.after(confirmationTime, this,
                                 [this] { update([](State& state) { state.showConfirmation = false; }); });
}

void CaptureComposer::acceptSuggestion(const std::string& tag) {
  setInput(HashtagParser::completingHashtag(tag, m_state.input));
  setInputFocused(true);
}

void CaptureComposer::dismissSaveError() {
  update([](State& state) {
    state.saveError.reset();
    state.saveFailureReason.clear();
  });
}

void CaptureComposer::dismissDraftNotice() {
  update([](State& state) {
    state.draftNotice.clear();
    state.inputFocused = true;
  });
}

} // namespace notlet
