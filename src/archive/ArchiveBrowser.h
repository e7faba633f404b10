#pragma once

#include <QObject>
#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "archive/ArchiveIndex.h"
#include "archive/ArchiveResults.h"
#include "archive/UnsavedEdits.h"
#include "commands/NotificationCenter.h"
#include "platform/Clock.h"
#include "storage/ModelContext.h"

namespace notlet {

/// The parts of the archive that the keyboard walks through, from top to bottom.
enum class MacArchiveKeyboardSection { search, hashtags, results };

/// What the archive tells the interpreter of key presses.
struct ArchiveKeyboardFlags {
  bool editingActive = false;
  bool searchFieldActive = false;
  bool hashtagNavigationActive = false;

  bool operator==(const ArchiveKeyboardFlags&) const = default;
};

/// The rules of the archive screen: searching, filtering by hashtags, selecting, editing in place, deleting.
///
/// Commands count only between appear() and disappear(). A text being edited is kept as an unsaved edit
/// until it is saved, however the editor was closed.
class ArchiveBrowser : public QObject {
  Q_OBJECT

 public:
  struct State {
    /// The query as typed, UTF-8.
    std::string searchText;
    bool searchFocused = false;
    /// Stays when a filter hides the notlet.
    std::optional<Uuid> selectedID;
    /// Folded.
    std::set<std::string> selectedTags;
    std::optional<Uuid> editingID;
    /// The text of the editor as typed, UTF-8.
    std::string editDraft;
    bool showingDeleteConfirmation = false;
    /// Message of the failure alert, which is up while it is set.
    std::optional<std::string> saveError;
    /// Why that failed, for whoever has to mend it.
    std::string saveFailureReason;
    MacArchiveKeyboardSection keyboardSection = MacArchiveKeyboardSection::results;
    /// The last result is to be selected once it is known, unless the user does anything else before.
    bool awaitsLastResult = false;
    /// An index into visibleHashtags(), maybe beyond its end.
    int activeHashtagIndex = 0;
    /// As typed while the keyboard was on the hashtags.
    std::string hashtagSearchInput;
    std::string hashtagSearchQuery;

    bool operator==(const State&) const = default;
  };

  /// What the archive lives on; all of it outlives the browser.
  struct Surroundings {
    ArchiveIndex& index;
    NotificationCenter& notificationCenter;
    Clock& clock;
    UnsavedEdits& unsavedEdits;
    /// Called at each change of the flags; all are false at the start.
    std::function<void(const ArchiveKeyboardFlags&)> publishFlags;
  };

  explicit ArchiveBrowser(Surroundings surroundings, QObject* parent = nullptr);
  ~ArchiveBrowser() override;

  [[nodiscard]] const State& state() const { return m_state; }

  /// The notlets that search and hashtags admit, newest first. Positions are valid until resultsChanged().
  [[nodiscard]] std::size_t resultCount() const { return m_results.size(); }
  [[nodiscard]] const NotletEntry& resultAt(std::size_t position) const { return m_results.at(position); }
  [[nodiscard]] std::optional<std::size_t> resultIndexOf(const Uuid& id) const {
    return m_results.positionOf(id);
  }
  /// Whether older results may still come in.
  [[nodiscard]] bool isSearching() const { return m_results.isSearching(); }

  /// All hashtags in use, the most used first, without "#".
  [[nodiscard]] const std::vector<std::string>& usedHashtags() const;
  /// Those that contain the hashtag search.
  [[nodiscard]] const std::vector<std::string>& visibleHashtags() const;
  /// Also one that a filter hides; null when nothing is selected or the notlet is gone.
  [[nodiscard]] const NotletEntry* selectedNotlet() const;
  /// Hashtags that complete the one being typed at the end of the edited text, at most eight, without "#".
  [[nodiscard]] std::vector<std::string> suggestions() const;
  /// What the user should know about the notlet being edited, a line each; mostly empty.
  [[nodiscard]] std::string editNotice() const;
  /// Why an unsaved edit is not safe on disk at the moment; empty when all are.
  [[nodiscard]] std::string draftWarning() const { return m_surroundings.unsavedEdits.warning(); }

  /// The screen came into view, in its first state. Does nothing when it is in view already.
  void appear();
  /// The screen went away. An edit under way is kept as an unsaved one.
  void disappear();

  void setSearchText(std::string text);
  void setSearchFocused(bool focused);

  /// A click on a visible hashtag: points the keyboard at it and toggles it as a filter.
  void chooseHashtag(const std::string& tag);
  /// The keyboard came to the hashtags, or to the results, by Tab.
  void enterHashtags();
  void enterResults();
  void toggleTag(const std::string& tag);
  void activateSelectedHashtag();
  void moveBetweenHashtags(int delta);
  /// Takes the name of a key: "backspace" or the character typed.
  void updateHashtagSearch(const std::string& key);
  void clearHashtagSearch();
  /// Drops the hashtag search and all hashtag filters, and leaves the keyboard with the results.
  void exitSearchMenu();
  void focusSearchField();

  void select(const Uuid& id);
  /// Down is 1, up is -1.
  void moveVertically(int delta);

  void beginEditing(const Uuid& id);
  void setEditDraft(std::string draft);
  /// Completes the hashtag at the end of the edited text.
  void acceptSuggestion(const std::string& tag);
  /// A draft without text is left as it is.
  void saveEdit(const Uuid& id);
  void cancelEditing();

  /// Whether there is a text that was typed for this notlet and not saved; not that of the open editor.
  [[nodiscard]] bool hasUnsavedEdit(const Uuid& id) const;
  /// Opens the editor with that text.
  void restoreUnsavedEdit(const Uuid& id);

  /// The unsaved edit of a notlet that is in the store no longer; null when there is none.
  [[nodiscard]] const std::string* orphanedEdit() const;
  /// Stores that text as a new notlet and selects it.
  void saveOrphanedEdit();
  void discardOrphanedEdit();

  /// Selects the notlet and asks whether to delete it.
  void requestDeletion(const Uuid& id);
  void dismissDeleteConfirmation();
  void deleteSelectedNotlet();
  void dismissSaveError();
  void dismissDraftWarning() { m_surroundings.unsavedEdits.dismissWarning(); }

 Q_SIGNALS:
  /// The state differs, or what is computed from it and the hashtags in use.
  void changed();
  /// Positions in the results. A change of the filter gives Reset, results found later Appended.
  void resultsChanged(const notlet::ListChange& change);
  /// The hashtags in use may differ.
  void hashtagsChanged();

 private:
  void update(const std::function<void(State&)>& change);
  void publish(const ArchiveKeyboardFlags& flags);
  void observeCommands();
  void observe(CommandName name, std::function<void(const CommandObject&)> handler);
  [[nodiscard]] ModelContext& list() const { return m_surroundings.index.modelContext(); }

  void followList();
  void followEndOfSearch();
  void leaveGoneHashtags();
  void keepDraft(const Uuid& id, const std::string& draft) const;
  void closeEditor(State& state) const;
  void openEditor(const Uuid& id, std::string draft);
  void reportFailure(std::string message, const Error& error);

  void awaitNextResult();
  [[nodiscard]] bool knowsLastResult() const;
  [[nodiscard]] std::optional<Uuid> firstResult() const;
  void moveDownFromSearch(State& state) const;
  void moveThroughResults(State& state, int delta) const;
  void moveToSectionAboveResults(State& state) const;
  void pointAtHashtags(State& state) const;
  [[nodiscard]] std::optional<Uuid> orphanedID() const;

  Surroundings m_surroundings;
  ArchiveResults m_results;
  State m_state;
  ArchiveKeyboardFlags m_flags;
  bool m_isShown = false;
  /// The search field is to have the keyboard once the screen comes into view.
  bool m_isSearchWanted = false;
  // The stored text when the editor was opened: a difference means that somebody else has changed it.
  std::string m_contentAtOpening;
  // Own changes of the list are no news about the edited notlet.
  bool m_isWriting = false;
  mutable std::vector<std::string> m_narrowedHashtags;
  mutable bool m_narrowedIsStale = true;
};

} // namespace notlet
