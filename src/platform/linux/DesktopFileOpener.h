#pragma once

#include "platform/FileOpener.h"

namespace notlet {

/// Asks the desktop which application opens a file.
class DesktopFileOpener final : public FileOpener {
 public:
  [[nodiscard]] Result<void> open(const std::filesystem::path& file) override;
};

} // namespace notlet
