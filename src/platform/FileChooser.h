#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "core/Error.h"

namespace notlet {

/// Lets the user choose JSON files in the desktop's own way.
///
/// The answer comes later, once, from the main thread: the file, or nothing when the user would rather not.
/// It never comes when what the dialog stands over goes away first.
class FileChooser {
 public:
  using Answer = std::function<void(const Result<std::optional<std::filesystem::path>>&)>;

  virtual ~FileChooser() = default;
  /// A file to read.
  virtual void chooseFileToOpen(const std::string& title, Answer answer) = 0;
  /// A place to write to. The user has agreed when there is a file already. The proposed name lacks its
  /// suffix.
  virtual void chooseFileToSave(const std::string& title, const std::string& proposedName, Answer answer) = 0;
};

} // namespace notlet
