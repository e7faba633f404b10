// Editing, deleting, and what becomes of edits that are not saved.

#include <utility>

#include "archive/ArchiveBrowser.h"
#include "core/HashtagParser.h"
#include "core/NotletEntry.h"
#include "core/Text.h"

namespace notlet {

namespace {

const std::string changedElsewhere = "This notlet was changed elsewhere while you were editing it. Saving "
                                     "replaces that change with your text.";
const std::string replacesEarlierEdit = "There is an earlier edit of this notlet that is not saved. What you "
                                        "type now replaces it; cancel and choose "
                                        "“Restore unsaved edit” to go on with it.";

} // namespace

void ArchiveBrowser::closeEditor(State& state) const {
  state.editingID.reset();
  state.editDraft.clear();
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
  const NotletEntry* notlet = list().find(id);
  if (notlet == nullptr)
    return;
  openEditor(id, notlet->content.str());
}

void ArchiveBrowser::setEditDraft(std::string draft) {
  if (!m_state.editingID || draft == m_state.editDraft)
    return;
  keepDraft(*m_state.editingID, draft);
  update([&](State& state) { state.editDraft = std::move(draft); });
}

void ArchiveBrowser::acceptSuggestion(const std::string& tag) {
  setEditDraft(HashtagParser::completingHashtag(tag, m_state.editDraft));
}

/// An edit that would change nothing, or leave nothing, is no loss.
void ArchiveBrowser::keepDraft(const Uuid& id, const std::string& draft) const {
  const std::string_view text = trimmed(draft);
  if (text.empty() || text == m_contentAtOpening)
    m_surroundings.unsavedEdits.forget(id);
  else
    m_surroundings.unsavedEdits.keep(id, draft);
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
  leaveGoneHashtags();
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

std::string ArchiveBrowser::editNotice() const {
  const NotletEntry* notlet = m_state.editingID ? list().find(*m_state.editingID) : nullptr;
  if (notlet == nullptr || m_isWriting)
    return {};
  // Another program has the store open, too.
  std::string notice = notlet->content == m_contentAtOpening ? "" : changedElsewhere;
  if (hasUnsavedEdit(notlet->id))
    notice += (notice.empty() ? "" : "\n") + replacesEarlierEdit;
  return notice;
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
  leaveGoneHashtags();
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

} // namespace notlet
