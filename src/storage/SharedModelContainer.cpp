#include "storage/SharedModelContainer.h"

#include "platform/DurableFile.h"

namespace notlet {

Result<std::unique_ptr<SharedModelContainer>>
SharedModelContainer::make(const DirectoryProvider& directory, bool allowsSave, bool syncsWithCloudKit) {
  Result<std::unique_ptr<SharedModelContainer>> container = prepare(directory, allowsSave, syncsWithCloudKit);
  if (!container)
    return container;
  if (const std::optional<StoreError>& obstacle = (*container)->mainContext().obstacle())
    return std::unexpected(static_cast<const Error&>(*obstacle));
  return container;
}

Result<std::unique_ptr<SharedModelContainer>>
SharedModelContainer::prepare(const DirectoryProvider& directory, bool allowsSave, bool syncsWithCloudKit) {
  const std::optional<std::filesystem::path> folder = directory();
  if (!folder)
    return failure("The folder for the notlets does not exist. Is the home folder set?");
  if (syncsWithCloudKit)
    return failure("Keeping the notlets in a cloud is not available on this system.");
  std::error_code ignored;
  // One that is not there yet is made on opening.
  if (allowsSave && std::filesystem::exists(*folder, ignored)) {
    if (const Result<void> made = makePrivateDirectory(*folder); !made)
      return std::unexpected(made.error());
  }
  std::unique_ptr<SharedModelContainer> container(
      new SharedModelContainer(*folder / "Notlet.store", allowsSave ? Access::ReadWrite : Access::ReadOnly));
  if (const std::optional<StoreError>& failed = container->mainContext().failure())
    return std::unexpected(static_cast<const Error&>(*failed));
  return container;
}

} // namespace notlet
