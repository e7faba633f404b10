#include "archive/UnsavedEdits.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace notlet {

UnsavedEdits::UnsavedEdits(std::optional<std::filesystem::path> directory, Scheduler& scheduler,
                           QObject* parent)
    : QObject(parent), m_directory(std::move(directory)), m_scheduler(scheduler) {
  if (m_directory)
    restore(*m_directory);
}

void UnsavedEdits::restore(const std::filesystem::path& directory) {
  std::error_code error; // A directory that is not there yet holds no edits.
  for (const auto& file : std::filesystem::directory_iterator(directory, error)) {
    const auto id = Uuid::parse(file.path().stem().string());
    if (!id || file.path().filename() != id->text() + ".txt")
      continue;
    auto text = keeperOf(*id).restore();
    if (!text)
      m_warnings.push_back({std::nullopt, text.error().message});
    else if (!text->empty())
      m_texts.emplace(*id, std::move(*text));
  }
}

DraftKeeper& UnsavedEdits::keeperOf(const Uuid& id) {
  auto& keeper = m_keepers[id];
  if (!keeper) {
    keeper = std::make_unique<DraftKeeper>(m_directory, id.text(), m_scheduler);
    connect(keeper.get(), &DraftKeeper::reported, this,
            [this, id](const std::string& reason) { setUnsafe(id, reason); });
  }
  return *keeper;
}

/// An empty reason says that the text is safe.
void UnsavedEdits::setUnsafe(const Uuid& id, const std::string& reason) {
  const auto known = std::ranges::find(m_warnings, std::optional(id), &Warning::edit);
  if (reason == (known == m_warnings.end() ? std::string() : known->reason))
    return;
  if (known != m_warnings.end())
    m_warnings.erase(known);
  if (!reason.empty())
    m_warnings.push_back({id, reason});
  Q_EMIT warningChanged();
}

std::string UnsavedEdits::warning() const {
  const auto told = std::ranges::find(m_warnings, false, &Warning::isDismissed);
  return told == m_warnings.end() ? std::string() : told->reason;
}

void UnsavedEdits::dismissWarning() {
  const auto told = std::ranges::find(m_warnings, false, &Warning::isDismissed);
  if (told == m_warnings.end())
    return;
  told->isDismissed = true;
  Q_EMIT warningChanged();
}

const std::string* UnsavedEdits::find(const Uuid& id) const {
  const auto found = m_texts.find(id);
  return found == m_texts.end() ? nullptr : &found->second;
}

void UnsavedEdits::keep(const Uuid& id, std::string text) {
  keeperOf(id).keep(text);
  m_texts.insert_or_assign(id, std::move(text));
}

void UnsavedEdits::forget(const Uuid& id) {
  if (m_texts.erase(id) > 0)
    keeperOf(id).keep({});
}

void UnsavedEdits::flush() {
  for (const auto& [id, keeper] : m_keepers)
    keeper->flush();
}

bool UnsavedEdits::isSafe() const {
  return std::ranges::all_of(m_keepers, [](const auto& entry) { return entry.second->isSafe(); });
}

} // namespace notlet
