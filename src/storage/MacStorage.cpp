#include "storage/MacStorage.h"

namespace notlet {
namespace {

std::optional<std::filesystem::path>& sharedDirectory() {
  static std::optional<std::filesystem::path> directory;
  return directory;
}

} // namespace

MacStorage::MacStorage(const std::optional<std::filesystem::path>& dataDirectory) {
  auto container = SharedModelContainer::make([&] { return dataDirectory; }, true, false);
  if (container)
    m_container = std::move(*container);
  else
    m_errorDescription = std::move(container.error().message);
}

MacStorage& MacStorage::shared() {
  // Never destroyed: its timers and watches would outlive the application object that they need.
  static MacStorage& storage = *new MacStorage(sharedDirectory());
  return storage;
}

void MacStorage::setSharedDirectory(std::optional<std::filesystem::path> dataDirectory) {
  sharedDirectory() = std::move(dataDirectory);
}

} // namespace notlet
