#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "core/Error.h"
#include "storage/ModelContext.h"

namespace notlet {

/// The store: `Notlet.store` in the folder that all programs of the family share.
class SharedModelContainer {
 public:
  /// Gives the shared folder, or nothing when the system has none.
  using DirectoryProvider = std::function<std::optional<std::filesystem::path>()>;

  /// With `allowsSave` a missing store is created, and the folder is made private. Mirroring to a cloud is
  /// foreseen in the interface only and refused.
  [[nodiscard]] static Result<std::unique_ptr<SharedModelContainer>>
  make(const DirectoryProvider& directory, bool allowsSave, bool syncsWithCloudKit);

  /// The same for a program that runs on: a store that is in use or out of reach is no failure, its context
  /// opens it as soon as it can.
  [[nodiscard]] static Result<std::unique_ptr<SharedModelContainer>>
  prepare(const DirectoryProvider& directory, bool allowsSave, bool syncsWithCloudKit);

  /// The one context, for the main thread.
  [[nodiscard]] ModelContext& mainContext() { return m_mainContext; }

 private:
  SharedModelContainer(const std::filesystem::path& store, Access access) : m_mainContext(store, access) {}

  ModelContext m_mainContext;
};

} // namespace notlet
