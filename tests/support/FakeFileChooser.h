#pragma once

#include "platform/FileChooser.h"

namespace notlet {

/// Keeps what it was asked until the test answers.
class FakeFileChooser final : public FileChooser {
 public:
  void chooseFileToOpen(const std::string&, Answer answer) override { toOpen = std::move(answer); }
  void chooseFileToSave(const std::string&, const std::string& name, Answer answer) override {
    proposedName = name;
    toSave = std::move(answer);
  }

  Answer toOpen;
  Answer toSave;
  std::string proposedName;
};

} // namespace notlet
