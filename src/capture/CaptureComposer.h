#pragma once

#include <QObject>
#include <optional>
#include <string>
#include <vector>

#include "commands/NotificationCenter.h"
#include "platform/Clock.h"
#include "platform/DraftKeeper.h"
#include "platform/Scheduler.h"
#include "platform/WidgetTimelines.h"
#include "storage/ModelContext.h"

namespace notlet {

/// The rules of the screen on which a notlet is written: draft, saving, confirmation and hashtag suggestions.
class CaptureComposer : public QObject {
  Q_OBJECT

 public:
  struct State {
    /// The draft as typed, UTF-8.
    std::string input;
    bool inputFocused = false;
    bool showConfirmation = false;
    /// Message of the failure alert, which is up while it is set.
    std::optional<std::string> saveError;
    /// Why the last save failed, for whoever has to mend it.
    std::string saveFailureReason;
    /// Why the draft is not safe on disk at the moment; empty when it is.
    std::string draftWarning;

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
  void setInput(std::string input);
  void setInputFocused(bool focused);
  /// Stores the draft as a notlet; a draft without text is left as it is.
  void save();
  void acceptSuggestion(const std::string& tag);
  void dismissSaveError();

 Q_SIGNALS:
  void changed();

 private:
  template<typename Change>
  void update(Change change);
  void observeCommands();
  void restoreDraft();
  void confirm();

  Surroundings m_surroundings;
  Surface m_surface;
  State m_state;
  std::uint64_t m_inputRevision = 0;
  bool m_draftIsRestored = false;
};

} // namespace notlet
