#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace notlet {

/// A directory of its own that goes with all its contents.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "notlet-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
      throw std::runtime_error("no temporary directory");
    m_path = name;
  }
  ~TemporaryDirectory() {
    std::error_code ignored; // What is left in the temporary directory harms nobody.
    std::filesystem::remove_all(m_path, ignored);
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

 private:
  std::filesystem::path m_path;
};

} // namespace notlet
