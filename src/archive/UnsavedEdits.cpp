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
      m_unreadable.push_back(text.error().message);
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
  const auto known = m_unsafe.find(id);
  if (reason == (known == m_unsafe.end() ? std::string() : known->second.reason))
    return;
  if (reason.empty())
    m_unsafe.erase(known);
  else
    m_unsafe[id] = {reason};
  Q_EMIT warningChanged();
}

std::string UnsavedEdits::warning() const {
  std::string lines;
  const auto add = [&](const std::string& line) { lines += lines.empty() ? line : "\n" + line; };
  for (const auto& [id, warning] : m_unsafe) {
    if (!warning.isDismissed)
      add(warning.reason);
  }
  std::ranges::for_each(m_unreadable, add);
  return lines;
}

void UnsavedEdits::dismissWarning() {
  for (auto& [id, warning] : m_unsafe)
    warning.isDismissed = true;
  m_unreadable.clear();
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
