#pragma once

#include <vector>

#include "platform/FileOpener.h"

namespace notlet {

/// Notes which files it was asked to open, and fails when told to.
class FakeFileOpener final : public FileOpener {
 public:
  [[nodiscard]] Result<void> open(const std::filesystem::path& file) override {
    opened.push_back(file);
    if (fails)
      return failure("No application opens this file.");
    return {};
  }

  std::vector<std::filesystem::path> opened;
  bool fails = false;
};

} // namespace notlet
