#include "storage/SharedModelContainer.h"

#include "platform/DurableFile.h"

namespace notlet {

Result<std::unique_ptr<SharedModelContainer>>
SharedModelContainer::make(const DirectoryProvider& directory, bool allowsSave, bool syncsWithCloudKit) {
  const std::optional<std::filesystem::path> folder = directory();
  if (!folder)
    return failure("The folder for the notlets does not exist. Is the home folder set?");
  if (syncsWithCloudKit)
    return failure("Keeping the notlets in a cloud is not available on this system.");
  if (allowsSave) {
    if (const Result<void> made = makePrivateDirectory(*folder); !made)
      return std::unexpected(made.error());
  }
  StoreResult<std::unique_ptr<NotletDatabase>> database =
      NotletDatabase::open(*folder / "Notlet.store", allowsSave ? Access::ReadWrite : Access::ReadOnly);
  if (!database)
    return std::unexpected(static_cast<const Error&>(database.error()));
  std::unique_ptr<SharedModelContainer> container(new SharedModelContainer(std::move(*database)));
  if (const std::optional<StoreError>& failed = container->mainContext().failure())
    return std::unexpected(static_cast<const Error&>(*failed));
  return container;
}

} // namespace notlet
