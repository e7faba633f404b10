#pragma once

#include <QObject>
#include <optional>
#include <string>
#include <vector>

#include "capture/SpeechRecognizer.h"
#include "commands/NotificationCenter.h"
#include "platform/Clock.h"
#include "platform/DraftKeeper.h"
#include "platform/Scheduler.h"
#include "platform/WidgetTimelines.h"
#include "storage/ModelContext.h"

namespace notlet {

/// The rules of the screen on which a notlet is written: draft, saving, confirmation, hashtag suggestions and
/// dictation.
class CaptureComposer : public QObject {
  Q_OBJECT

 public:
  enum class Dictation {
    off,
    /// The microphone was asked for.
    starting,
    recording,
  };

  struct State {
    /// The draft as typed, UTF-8.
    std::string input;
    bool inputFocused = false;
    Dictation dictation = Dictation::off;
    bool showConfirmation = false;
    /// Message of the dictation alert, which is up while it is set.
    std::optional<std::string> speechError;
    /// Message of the failure alert, which is up while it is set.
    std::optional<std::string> saveError;
    /// Why the last save failed, for whoever has to mend it.
    std::string saveFailureReason;
    /// Why the draft is not safe on disk at the moment; empty when it is.
    std::string draftWarning;
    /// What became of an earlier draft, until the user dismisses it; mostly empty.
    std::string draftNotice;

    /// Whether there is anything to save.
    [[nodiscard]] bool canSave() const;
    bool operator==(const State&) const = default;
  };

  /// Where the composer is shown, which decides whose commands it follows.
  enum class Surface {
    /// The main window's section.
    mainWindow,
    /// The popover or the floating panel.
    quickCapture,
  };

  /// What a composer lives on; all of it outlives the composer.
  struct Surroundings {
    ModelContext& modelContext;
    NotificationCenter& notificationCenter;
    Clock& clock;
    Scheduler& scheduler;
    DraftKeeper& draftKeeper;
    /// Told of each notlet that a quick capture saved.
    WidgetTimelines* widgetTimelines = nullptr;
    /// Without it there is no dictation.
    SpeechService* speechService = nullptr;
    /// What the user speaks, the first choice first (SpeechRecognizer).
    std::vector<std::string> preferredLanguages = {};
  };

  explicit CaptureComposer(const Surroundings& surroundings, Surface surface = Surface::mainWindow,
                           QObject* parent = nullptr);

  [[nodiscard]] const State& state() const { return m_state; }
  /// Grows with each change of the input, so that a view need not compare megabytes to see one.
  [[nodiscard]] std::uint64_t inputRevision() const { return m_inputRevision; }
  /// Hashtags that complete the one being typed at the end of the draft, at most eight, without "#".
  [[nodiscard]] std::vector<std::string> suggestions() const;

  /// The screen came into view: brings back the kept draft and takes the focus.
  void appear();
  /// The screen went out of view, so it does not listen any more.
  void disappear() { stopDictation(); }
  /// What the user made of the draft. Whoever writes does not dictate any more: the next words heard would
  /// replace what was written.
  void setInput(std::string input);
  void setInputFocused(bool focused);
  /// Stores the draft as a notlet; a draft without text is left as it is.
  void save();
  void acceptSuggestion(const std::string& tag);
  void dismissSaveError();
  /// Whoever has read it goes on writing.
  void dismissDraftNotice();

  /// Starts dictation, or stops it. What is said goes to the end of the draft.
  void handleMicTap();
  /// What was heard so far stays in the draft.
  void stopDictation();
  void dismissSpeechError();

 Q_SIGNALS:
  void changed();
  /// How loud the microphone is, from 0 to 1, while recording.
  void inputLevelChanged(double level);

 private:
  template<typename Change>
  void update(Change change);
  void observeCommands();
  void restoreDraft();
  void write(std::string input);
  void confirm();

  void followRecognizer();
  void askForMicrophone(bool speechIsGranted);
  void startRecording(bool microphoneIsGranted);
  void failDictation(const std::string& message);
  [[nodiscard]] SpeechRecognizer::Answer ifStillWanted(void (CaptureComposer::*next)(bool));

  Surroundings m_surroundings;
  Surface m_surface;
  State m_state;
  std::uint64_t m_inputRevision = 0;
  bool m_draftIsRestored = false;
  SpeechRecognizer m_speechRecognizer;
  /// Tells the answers to an earlier tap from those to the last one.
  std::uint64_t m_micTaps = 0;
};

template<typename Change>
void CaptureComposer::update(Change change) {
  State next = m_state;
  change(next);
  if (next == m_state)
    return;
  m_state = std::move(next);
  Q_EMIT changed();
}

} // namespace notlet
