#include "archive/ArchiveBrowser.h"

#include <algorithm>
#include <utility>

#include "core/HashtagParser.h"
#include "core/Text.h"

namespace notlet {

namespace {

using Section = MacArchiveKeyboardSection;

constexpr std::size_t suggestionLimit = 8;

} // namespace

ArchiveBrowser::ArchiveBrowser(Surroundings surroundings, QObject* parent)
    : QObject(parent), m_surroundings(std::move(surroundings)), m_results(m_surroundings.index) {
  connect(&m_results, &ArchiveResults::changed, this, &ArchiveBrowser::resultsChanged);
  connect(&m_surroundings.index, &ArchiveIndex::listChanged, this, &ArchiveBrowser::followList);
  connect(&m_results, &ArchiveResults::finished, this, &ArchiveBrowser::followEndOfSearch);
  connect(&m_surroundings.unsavedEdits, &UnsavedEdits::warningChanged, this, &ArchiveBrowser::changed);
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
  // It comes before the screen when the window is still to be shown.
  m_surroundings.notificationCenter.observe(focusMacArchiveSearchField, this, [this](const CommandObject&) {
    m_isSearchWanted = !m_isShown;
    if (m_isShown)
      focusSearchField();
  });
  observe(searchMacHashtags, [this](const CommandObject& key) {
    if (key)
      updateHashtagSearch(*key);
  });
}

/// The one place where the state changes.
void ArchiveBrowser::update(const std::function<void(State&)>& change) {
  State next = m_state;
  change(next);
  if (next == m_state)
    return;
  next.awaitsLastResult = next.awaitsLastResult && !m_state.awaitsLastResult;
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
  if (std::exchange(m_isSearchWanted, false))
    focusSearchField();
}

void ArchiveBrowser::disappear() {
  m_isShown = false;
  m_isSearchWanted = false;
  update([](State& state) { state = {}; });
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
      if (containsCanonically(folded(tag), wanted))
        m_narrowedHashtags.push_back(tag);
    }
  }
  return m_narrowedHashtags;
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
    state.searchFocused = false;
    state.activeHashtagIndex = static_cast<int>(found - tags.begin());
  });
  toggleTag(tag);
}

void ArchiveBrowser::enterHashtags() {
  update([&](State& state) { pointAtHashtags(state); });
}

void ArchiveBrowser::enterResults() {
  update([](State& state) { state.keyboardSection = Section::results; });
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
    state.searchFocused = true;
  });
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

/// What no notlet carries any more has no chip: as a filter it would be in force unseen.
void ArchiveBrowser::leaveGoneHashtags() {
  // Until all are loaded, a notlet that carries it may still come; and a change that fails is undone.
  if (!list().isComplete() || m_isWriting)
    return;
  update([&](State& state) {
    std::erase_if(state.selectedTags, [&](const auto& tag) { return !list().tallies().isUsed(tag); });
    if (state.keyboardSection == Section::hashtags && usedHashtags().empty())
      state.keyboardSection = Section::results;
  });
}

void ArchiveBrowser::followEndOfSearch() {
  leaveGoneHashtags();
  if (m_state.awaitsLastResult && knowsLastResult())
    return moveVertically(-1);
  Q_EMIT changed();
}

void ArchiveBrowser::followList() {
  m_narrowedIsStale = true;
  // The text of a notlet that was deleted elsewhere, if it was changed here, stays as an orphaned edit.
  if (m_state.editingID && !m_isWriting && !list().find(*m_state.editingID))
    cancelEditing();
  leaveGoneHashtags();
  Q_EMIT hashtagsChanged();
  // Suggestions and orphaned edits come from the list.
  if (m_state.editingID || !m_surroundings.unsavedEdits.texts().empty())
    Q_EMIT changed();
}

} // namespace notlet
