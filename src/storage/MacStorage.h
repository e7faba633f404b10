#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "storage/SharedModelContainer.h"

namespace notlet {

/// Opens the store once and remembers the container, or why there is none.
class MacStorage {
 public:
  /// Without a data directory there is no container.
  explicit MacStorage(const std::optional<std::filesystem::path>& dataDirectory);

  /// The storage of the process in the directory set below; opened by the first call, never closed.
  [[nodiscard]] static MacStorage& shared();
  /// Says where shared() looks. To be called before its first use.
  static void setSharedDirectory(std::optional<std::filesystem::path> dataDirectory);

  /// Null exactly when there is an error description.
  [[nodiscard]] SharedModelContainer* container() const { return m_container.get(); }
  [[nodiscard]] const std::optional<std::string>& errorDescription() const { return m_errorDescription; }

 private:
  std::unique_ptr<SharedModelContainer> m_container;
  std::optional<std::string> m_errorDescription;
};

} // namespace notlet
