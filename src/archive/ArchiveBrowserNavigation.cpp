// How the keyboard walks through search field, hashtags and results.

#include <algorithm>
#include <chrono>

#include "archive/ArchiveBrowser.h"

namespace notlet {

namespace {

using Section = MacArchiveKeyboardSection;

/// How long a key that needs the last result may wait for it.
constexpr std::chrono::milliseconds searchPatience{30};

} // namespace

void ArchiveBrowser::moveVertically(int delta) {
  awaitNextResult();
  update([&](State& state) {
    closeEditor(state);
    state.awaitsLastResult = false;
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

bool ArchiveBrowser::knowsLastResult() const {
  return !isSearching() && (list().isComplete() || list().failure());
}

void ArchiveBrowser::moveThroughResults(State& state, int delta) const {
  const auto selected = state.selectedID ? resultIndexOf(*state.selectedID) : std::nullopt;
  if (!selected && delta < 0 && !knowsLastResult()) {
    state.awaitsLastResult = true;
    return;
  }
  if (resultCount() == 0) {
    if (delta < 0)
      moveToSectionAboveResults(state);
    return;
  }
  const std::size_t last = resultCount() - 1;
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

} // namespace notlet
