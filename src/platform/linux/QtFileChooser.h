#pragma once

#include "platform/FileChooser.h"

namespace notlet {

/// Shows the desktop's file dialog, or Qt's where there is none, over the window in use.
class QtFileChooser final : public FileChooser {
 public:
  void chooseFileToOpen(const std::string& title, Answer answer) override;
  void chooseFileToSave(const std::string& title, const std::string& proposedName, Answer answer) override;
};

} // namespace notlet
