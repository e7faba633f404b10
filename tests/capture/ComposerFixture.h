#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "capture/CaptureComposer.h"
#include "storage/NotletDatabase.h"
#include "support/FakeClock.h"
#include "support/FakeScheduler.h"
#include "support/TemporaryDirectory.h"

namespace notlet {

/// A composer on a store of its own.
class ComposerFixture : public testing::Test {
 protected:
  [[nodiscard]] std::unique_ptr<NotletDatabase> openDatabase() const {
    auto opened = NotletDatabase::open(store, Access::ReadWrite);
    if (!opened)
      throw std::runtime_error(opened.error().message);
    return std::move(*opened);
  }
  void save(const std::string& text) {
    composer.setInput(text);
    composer.save();
  }
  [[nodiscard]] std::vector<std::string> contents() const {
    std::vector<std::string> texts;
    for (std::size_t index = 0; index < context.size(); ++index)
      texts.push_back(context.at(index).content.str());
    return texts;
  }
  /// Leaves a draft that the next composer cannot read.
  void setAsideADraft() const {
    std::filesystem::create_directories(directory.path() / "drafts");
    std::ofstream(directory.path() / "drafts" / "main-window.txt") << '\xFF';
  }
  /// Takes the store away, as a failing disk would.
  void breakStore() const { std::filesystem::rename(store, away); }
  void mendStore() const { std::filesystem::rename(away, store); }

  TemporaryDirectory directory;
  std::filesystem::path store = directory.path() / "Notlet.store";
  std::filesystem::path away = directory.path() / "away";
  ModelContext context{openDatabase()};
  NotificationCenter center;
  FakeClock clock;
  FakeScheduler scheduler;
  DraftKeeper drafts{directory.path() / "drafts", "main-window", scheduler};
  CaptureComposer composer{{context, center, clock, scheduler, drafts}};
};

} // namespace notlet
