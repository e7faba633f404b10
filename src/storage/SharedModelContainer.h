#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "core/Error.h"
#include "storage/ModelContext.h"

namespace notlet {

/// The opened store: `Notlet.store` in the folder that all programs of the family share.
class SharedModelContainer {
 public:
  /// Gives the shared folder, or nothing when the system has none.
  using DirectoryProvider = std::function<std::optional<std::filesystem::path>()>;

  /// With `allowsSave` a missing store is created, and the folder is made private. Mirroring to a cloud is
  /// foreseen in the interface only and refused.
  [[nodiscard]] static Result<std::unique_ptr<SharedModelContainer>>
  make(const DirectoryProvider& directory, bool allowsSave, bool syncsWithCloudKit);

  /// The one context, for the main thread.
  [[nodiscard]] ModelContext& mainContext() { return m_mainContext; }

 private:
  explicit SharedModelContainer(std::unique_ptr<NotletDatabase> database)
      : m_mainContext(std::move(database)) {}

  ModelContext m_mainContext;
};

} // namespace notlet
