#pragma once

#include <filesystem>

#include "core/Error.h"

namespace notlet {

/// Opens a file with the application that the user has chosen for its kind.
class FileOpener {
 public:
  virtual ~FileOpener() = default;
  [[nodiscard]] virtual Result<void> open(const std::filesystem::path& file) = 0;
};

} // namespace notlet
