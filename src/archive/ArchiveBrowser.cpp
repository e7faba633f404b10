#include "archive/ArchiveBrowser.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "core/HashtagParser.h"
#include "core/NotletEntry.h"
#include "core/Text.h"

namespace notlet {

namespace {

using Section = MacArchiveKeyboardSection;

constexpr std::size_t suggestionLimit = 8;
/// How long a key that needs the last result may wait for it.
constexpr std::chrono::milliseconds searchPatience{30};

const std::string changedElsewhere = "This notlet was changed elsewhere while you were editing it. Saving "
                                     "replaces that change with your text.";

} // namespace

ArchiveBrowser::ArchiveBrowser(Surroundings surroundings, QObject* parent)
    : QObject(parent), m_surroundings(std::move(surroundings)), m_results(m_surroundings.index) {
  connect(&m_results, &ArchiveResults::changed, this, &ArchiveBrowser::resultsChanged);
  connect(&m_surroundings.index, &ArchiveIndex::listChanged, this, &ArchiveBrowser::followList);
  connect(&list(), &ModelContext::loadingFinished, this, &ArchiveBrowser::changed);
  m_state.draftWarning = m_surroundings.unsavedEdits.warning();
  connect(&m_surroundings.unsavedEdits, &UnsavedEdits::warningChanged, this, [this] {
    update([&](State& state) { state.draftWarning = m_surroundings.unsavedEdits.warning(); });
  });
  observeCommands();
}

ArchiveBrowser::~ArchiveBrowser() {
  publish({});
}

void ArchiveBrowser::observe(CommandName name, std::function<void(const CommandObject&)> handler) {
  m_surroundings.notificationCenter.observe(name, this,
                                            [this, call = std::move(handler)](const CommandObject& object) {
                                              if (m_isShown)
                                                call(object);
                                            });
}

void ArchiveBrowser::observeCommands() {
  const auto carriesOut = [this](CommandName name, auto action) {
    observe(name, [action](const CommandObject&) { action(); });
  };
  using enum CommandName;
  carriesOut(selectNextMacNotlet, [this] { moveVertically(1); });
  carriesOut(selectPreviousMacNotlet, [this] { moveVertically(-1); });
  carriesOut(selectNextMacHashtag, [this] { moveBetweenHashtags(1); });
  carriesOut(selectPreviousMacHashtag, [this] { moveBetweenHashtags(-1); });
  carriesOut(activateSelectedMacHashtag, [this] { activateSelectedHashtag(); });
  carriesOut(clearMacHashtagSearch, [this] { exitSearchMenu(); });
  carriesOut(focusMacArchiveSearchField, [this] { focusSearchField(); });
  carriesOut(cancelEditingMacNotlet, [this] { cancelEditing(); });
  carriesOut(editSelectedMacNotlet, [this] {
    if (const NotletEntry* notlet = selectedNotlet())
      beginEditing(notlet->id);
  });
  carriesOut(deleteSelectedMacNotlet, [this] {
    if (selectedNotlet())
      update([](State& state) { state.showingDeleteConfirmation = true; });
  });
  carriesOut(saveEditingMacNotlet, [this] {
    if (selectedNotlet() && m_state.editingID == m_state.selectedID)
      saveEdit(*m_state.selectedID);
  });
  observe(searchMacHashtags, [this](const CommandObject& key) {
    if (key)
      updateHashtagSearch(*key);
  });
}

/// The one place where the state changes.
template<typename Change>
void ArchiveBrowser::update(Change change) {
  State next = m_state;
  change(next);
  if (next == m_state)
    return;
  const bool filterChanged =
      next.searchText != m_state.searchText || next.selectedTags != m_state.selectedTags;
  if (next.hashtagSearchQuery != m_state.hashtagSearchQuery)
    m_narrowedIsStale = true;
  m_state = std::move(next);
  publish(
      {m_state.editingID.has_value(), m_state.searchFocused, m_state.keyboardSection == Section::hashtags});
  if (filterChanged)
    m_results.setFilter(ArchiveFilter::make(m_state.searchText, m_state.selectedTags));
  Q_EMIT changed();
}

void ArchiveBrowser::publish(const ArchiveKeyboardFlags& flags) {
  if (flags == m_flags)
    return;
  m_flags = flags;
  if (m_surroundings.publishFlags)
    m_surroundings.publishFlags(flags);
}

void ArchiveBrowser::appear() {
  if (std::exchange(m_isShown, true))
    return;
  m_results.prepare();
}

void ArchiveBrowser::disappear() {
  m_isShown = false;
  update([&](State& state) {
    state = {};
    state.draftWarning = m_surroundings.unsavedEdits.warning();
  });
}

const std::vector<std::string>& ArchiveBrowser::usedHashtags() const {
  return list().tallies().usedHashtags();
}

const std::vector<std::string>& ArchiveBrowser::visibleHashtags() const {
  if (m_state.hashtagSearchQuery.empty())
    return usedHashtags();
  if (std::exchange(m_narrowedIsStale, false)) {
    m_narrowedHashtags.clear();
    const std::string wanted = folded(m_state.hashtagSearchQuery);
    for (const std::string& tag : usedHashtags()) {
      if (containsCanonically(tag, wanted))
        m_narrowedHashtags.push_back(tag);
    }
  }
  return m_narrowedHashtags;
}

bool ArchiveBrowser::isTagSelected(const std::string& tag) const {
  return m_state.selectedTags.contains(folded(tag));
}

const NotletEntry* ArchiveBrowser::selectedNotlet() const {
  return m_state.selectedID ? list().find(*m_state.selectedID) : nullptr;
}

std::vector<std::string> ArchiveBrowser::suggestions() const {
  const auto partial = HashtagParser::inProgressHashtag(m_state.editDraft);
  if (!m_state.editingID || !partial)
    return {};
  return list().tallies().suggestions(*partial, suggestionLimit);
}

void ArchiveBrowser::setSearchText(std::string text) {
  update([&](State& state) { state.searchText = std::move(text); });
}

void ArchiveBrowser::setSearchFocused(bool focused) {
  update([&](State& state) {
    state.searchFocused = focused;
    if (focused)
      state.keyboardSection = Section::search;
  });
}

void ArchiveBrowser::chooseHashtag(const std::string& tag) {
  const auto& tags = visibleHashtags();
  const auto found = std::ranges::find(tags, tag);
  if (found == tags.end())
    return;
  update([&](State& state) {
    state.keyboardSection = Section::hashtags;
    state.activeHashtagIndex = static_cast<int>(found - tags.begin());
  });
  toggleTag(tag);
}

void ArchiveBrowser::enterHashtags() {
  update([&](State& state) { pointAtHashtags(state); });
}

void ArchiveBrowser::toggleTag(const std::string& tag) {
  update([key = folded(tag)](State& state) {
    if (state.selectedTags.erase(key) == 0)
      state.selectedTags.insert(key);
  });
}

void ArchiveBrowser::activateSelectedHashtag() {
  if (m_state.keyboardSection != Section::hashtags)
    return;
  const auto index = static_cast<std::size_t>(m_state.activeHashtagIndex);
  if (index < visibleHashtags().size())
    toggleTag(visibleHashtags()[index]);
}

void ArchiveBrowser::moveBetweenHashtags(int delta) {
  const int count = static_cast<int>(visibleHashtags().size());
  if (m_state.keyboardSection != Section::hashtags || count == 0)
    return;
  update([&](State& state) {
    state.activeHashtagIndex = std::clamp(state.activeHashtagIndex + delta, 0, count - 1);
  });
}

void ArchiveBrowser::updateHashtagSearch(const std::string& key) {
  update([&](State& state) {
    std::string& input = state.hashtagSearchInput;
    if (key != "backspace")
      input += key;
    else if (!input.empty())
      input.resize(input.size() - graphemes(input).back().size());
    state.hashtagSearchQuery = input;
    state.activeHashtagIndex = 0;
  });
}

void ArchiveBrowser::clearHashtagSearch() {
  update([](State& state) {
    state.hashtagSearchInput.clear();
    state.hashtagSearchQuery.clear();
    state.activeHashtagIndex = 0;
  });
}

void ArchiveBrowser::exitSearchMenu() {
  update([](State& state) {
    state.hashtagSearchInput.clear();
    state.hashtagSearchQuery.clear();
    state.activeHashtagIndex = 0;
    state.selectedTags.clear();
    state.searchFocused = false;
    state.keyboardSection = Section::results;
  });
}

void ArchiveBrowser::focusSearchField() {
  update([&](State& state) {
    closeEditor(state);
    state.keyboardSection = Section::search;
  });
  // The section may have been switched just now, and its field comes into view on the next turn.
  QMetaObject::invokeMethod(
      this,
      [this] {
        if (m_isShown)
          setSearchFocused(true);
      },
      Qt::QueuedConnection);
}

void ArchiveBrowser::select(const Uuid& id) {
  update([&](State& state) {
    if (state.editingID != id)
      closeEditor(state);
    state.keyboardSection = Section::results;
    state.searchFocused = false;
    state.selectedID = id;
  });
}

void ArchiveBrowser::moveVertically(int delta) {
  awaitNextResult();
  update([&](State& state) {
    closeEditor(state);
    switch (state.keyboardSection) {
    case Section::results:
      return moveThroughResults(state, delta);
    case Section::hashtags:
      if (delta < 0) {
        state.keyboardSection = Section::search;
        state.searchFocused = true;
        return;
      }
      state.keyboardSection = Section::results;
      if (!state.selectedID || !resultIndexOf(*state.selectedID))
        state.selectedID = firstResult();
      return;
    case Section::search:
      if (delta >= 1)
        moveDownFromSearch(state);
      return;
    }
  });
}

/// A step beyond what has been found so far waits for a moment.
void ArchiveBrowser::awaitNextResult() {
  const auto selected = m_state.selectedID ? resultIndexOf(*m_state.selectedID) : std::nullopt;
  if (isSearching() && (!selected || *selected + 1 == resultCount()))
    m_results.advance(searchPatience);
}

void ArchiveBrowser::moveDownFromSearch(State& state) const {
  state.searchFocused = false;
  if (!usedHashtags().empty())
    return pointAtHashtags(state);
  state.keyboardSection = Section::results;
  state.selectedID = firstResult();
}

void ArchiveBrowser::moveThroughResults(State& state, int delta) const {
  if (resultCount() == 0) {
    if (delta < 0)
      moveToSectionAboveResults(state);
    return;
  }
  const std::size_t last = resultCount() - 1;
  const auto selected = state.selectedID ? resultIndexOf(*state.selectedID) : std::nullopt;
  if (!selected)
    state.selectedID = resultAt(delta >= 1 ? 0 : last).id;
  else if (delta < 0 && *selected == 0)
    moveToSectionAboveResults(state);
  else
    state.selectedID = resultAt(delta < 0 ? *selected - 1 : std::min(*selected + 1, last)).id;
}

void ArchiveBrowser::moveToSectionAboveResults(State& state) const {
  if (!usedHashtags().empty())
    return pointAtHashtags(state);
  state.keyboardSection = Section::search;
  state.searchFocused = true;
}

/// Keeps the pointer within all hashtags; whoever uses it looks whether that one is visible.
void ArchiveBrowser::pointAtHashtags(State& state) const {
  state.keyboardSection = Section::hashtags;
  state.activeHashtagIndex = std::min(static_cast<int>(usedHashtags().size()) - 1, state.activeHashtagIndex);
}

std::optional<Uuid> ArchiveBrowser::firstResult() const {
  return resultCount() == 0 ? std::nullopt : std::optional(resultAt(0).id);
}

void ArchiveBrowser::closeEditor(State& state) const {
  state.editingID.reset();
  state.editDraft.clear();
  state.editNotice.clear();
}

void ArchiveBrowser::openEditor(const Uuid& id, std::string draft) {
  const NotletEntry* notlet = list().find(id);
  if (notlet == nullptr)
    return;
  m_contentAtOpening = notlet->content;
  update([&](State& state) {
    closeEditor(state);
    state.selectedID = id;
    state.editDraft = std::move(draft);
    state.editingID = id;
  });
}

void ArchiveBrowser::beginEditing(const Uuid& id) {
  // What is being typed must not be replaced by what is stored.
  if (m_state.editingID == id)
    return update([&](State& state) { state.selectedID = id; });
  if (const NotletEntry* notlet = list().find(id))
    openEditor(id, notlet->content);
}

void ArchiveBrowser::setEditDraft(std::string draft) {
  if (!m_state.editingID || draft == m_state.editDraft)
    return;
  update([&](State& state) { state.editDraft = std::move(draft); });
  keepDraft();
}

void ArchiveBrowser::acceptSuggestion(const std::string& tag) {
  setEditDraft(HashtagParser::completingHashtag(tag, m_state.editDraft));
}

/// An edit that would change nothing, or leave nothing, is no loss.
void ArchiveBrowser::keepDraft() {
  const std::string_view text = trimmed(m_state.editDraft);
  if (text.empty() || text == m_contentAtOpening)
    m_surroundings.unsavedEdits.forget(*m_state.editingID);
  else
    m_surroundings.unsavedEdits.keep(*m_state.editingID, m_state.editDraft);
}

void ArchiveBrowser::saveEdit(const Uuid& id) {
  const NotletEntry* stored = list().find(id);
  if (stored == nullptr || m_state.editingID != id)
    return;
  const NotletEntry before = *stored;
  NotletEntry edited = before;
  if (!applyEdit(edited, m_state.editDraft, m_surroundings.clock.now()))
    return;
  m_isWriting = true;
  list().replace(std::move(edited));
  const Result<void> saved = list().save();
  if (!saved)
    list().replace(before);
  m_isWriting = false;
  if (!saved)
    return reportFailure("This notlet was not updated. Please try again.", saved.error());
  m_surroundings.unsavedEdits.forget(id);
  cancelEditing();
}

void ArchiveBrowser::cancelEditing() {
  update([&](State& state) { closeEditor(state); });
}

bool ArchiveBrowser::hasUnsavedEdit(const Uuid& id) const {
  const std::string* text = m_surroundings.unsavedEdits.find(id);
  const NotletEntry* notlet = list().find(id);
  return text != nullptr && notlet != nullptr && trimmed(*text) != notlet->content &&
         (m_state.editingID != id || m_state.editDraft != *text);
}

void ArchiveBrowser::restoreUnsavedEdit(const Uuid& id) {
  if (const std::string* text = m_surroundings.unsavedEdits.find(id))
    openEditor(id, *text);
}

std::optional<Uuid> ArchiveBrowser::orphanedID() const {
  // Until all are loaded, a notlet that is not in the list may still be in the store.
  if (!list().isComplete() || m_isWriting)
    return std::nullopt;
  for (const auto& [id, text] : m_surroundings.unsavedEdits.texts()) {
    if (!list().find(id))
      return id;
  }
  return std::nullopt;
}

const std::string* ArchiveBrowser::orphanedEdit() const {
  const auto id = orphanedID();
  return id ? m_surroundings.unsavedEdits.find(*id) : nullptr;
}

void ArchiveBrowser::saveOrphanedEdit() {
  const auto id = orphanedID();
  if (!id)
    return;
  auto notlet = makeNotlet(*m_surroundings.unsavedEdits.find(*id), m_surroundings.clock.now());
  if (!notlet)
    return discardOrphanedEdit();
  const Uuid newID = notlet->id;
  list().insert(std::move(*notlet));
  if (const Result<void> saved = list().save(); !saved) {
    list().rollback();
    return reportFailure("Your text was not saved. Please try again.", saved.error());
  }
  m_surroundings.unsavedEdits.forget(*id);
  select(newID);
  Q_EMIT changed();
}

void ArchiveBrowser::discardOrphanedEdit() {
  if (const auto id = orphanedID()) {
    m_surroundings.unsavedEdits.forget(*id);
    Q_EMIT changed();
  }
}

void ArchiveBrowser::requestDeletion(const Uuid& id) {
  select(id);
  update([](State& state) { state.showingDeleteConfirmation = true; });
}

void ArchiveBrowser::dismissDeleteConfirmation() {
  update([](State& state) { state.showingDeleteConfirmation = false; });
}

void ArchiveBrowser::deleteSelectedNotlet() {
  dismissDeleteConfirmation();
  const NotletEntry* notlet = selectedNotlet();
  if (notlet == nullptr)
    return;
  const Uuid id = notlet->id;
  m_isWriting = true;
  list().remove(id);
  const Result<void> saved = list().save();
  if (!saved)
    list().rollback();
  m_isWriting = false;
  if (!saved)
    return reportFailure("This notlet was not deleted. Please try again.", saved.error());
  m_surroundings.unsavedEdits.forget(id);
  update([&](State& state) {
    if (state.editingID == id)
      closeEditor(state);
    state.selectedID.reset();
  });
}

void ArchiveBrowser::reportFailure(std::string message, const Error& error) {
  update([&](State& state) {
    state.saveError = std::move(message);
    state.saveFailureReason = error.message;
  });
}

void ArchiveBrowser::dismissSaveError() {
  update([](State& state) {
    state.saveError.reset();
    state.saveFailureReason.clear();
  });
}

void ArchiveBrowser::followList() {
  m_narrowedIsStale = true;
  if (m_state.editingID && !m_isWriting)
    followEditedNotlet();
  Q_EMIT hashtagsChanged();
  // Suggestions and orphaned edits come from the list.
  if (m_state.editingID || !m_surroundings.unsavedEdits.texts().empty())
    Q_EMIT changed();
}

/// Another program has the store open, too.
void ArchiveBrowser::followEditedNotlet() {
  const NotletEntry* notlet = list().find(*m_state.editingID);
  // The text, if it was changed, stays as an orphaned edit.
  if (notlet == nullptr)
    return cancelEditing();
  update([&](State& state) {
    state.editNotice = notlet->content == m_contentAtOpening ? std::string() : changedElsewhere;
  });
}

} // namespace notlet
