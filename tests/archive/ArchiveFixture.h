#pragma once

#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include "archive/ArchiveBrowser.h"
#include "storage/StoreFixture.h"
#include "support/FakeClock.h"
#include "support/FakeScheduler.h"

namespace notlet {

/// An archive on a store of its own, in view.
class ArchiveFixture : public StoreFixture {
 protected:
  ArchiveFixture() { start(); }

  /// A new process on the same files.
  void start() {
    browser.reset();
    unsavedEdits.reset();
    index.reset();
    context = std::make_unique<ModelContext>(openStore());
    index = std::make_unique<ArchiveIndex>(*context);
    unsavedEdits = std::make_unique<UnsavedEdits>(editFolder(), scheduler);
    browser = std::make_unique<ArchiveBrowser>(ArchiveBrowser::Surroundings{
        *index, center, clock, *unsavedEdits, [this](const ArchiveKeyboardFlags& now) { flags = now; }});
    browser->appear();
  }

  [[nodiscard]] std::filesystem::path editFolder() const { return folder() / "drafts" / "edits"; }
  [[nodiscard]] const ArchiveBrowser::State& state() const { return browser->state(); }

  /// Stores notlets of these texts, the first being the newest, and gives their identifiers.
  std::vector<Uuid> fill(const std::vector<std::string>& newestFirst) {
    std::vector<Uuid> ids;
    for (const std::string& content : newestFirst) {
      const auto age = std::chrono::minutes(ids.size() + 1);
      NotletEntry notlet = makeNotlet(content, clock.time - age).value();
      ids.push_back(notlet.id);
      context->insert(std::move(notlet));
    }
    EXPECT_TRUE(context->save());
    return ids;
  }
  /// The text of a stored notlet, as another process reads it; empty when there is none.
  [[nodiscard]] std::string storedText(const Uuid& id) const {
    const auto found = openStore()->find(id);
    return found && *found ? (*found)->content.str() : std::string();
  }
  void changeElsewhere(const Uuid& id, const std::string& content) const {
    NotletEntry changed = *context->find(id);
    ASSERT_TRUE(applyEdit(changed, content, clock.now()));
    storeElsewhere({changed});
  }
  [[nodiscard]] std::vector<std::string> results() const {
    std::vector<std::string> contents;
    for (std::size_t position = 0; position < browser->resultCount(); ++position)
      contents.push_back(browser->resultAt(position).content.str());
    return contents;
  }

  /// Takes the store away, as a failing disk would.
  void breakStore() const { std::filesystem::rename(store(), folder() / "away"); }
  void mendStore() const { std::filesystem::rename(folder() / "away", store()); }

  NotificationCenter center;
  FakeClock clock;
  FakeScheduler scheduler;
  std::unique_ptr<ModelContext> context;
  std::unique_ptr<ArchiveIndex> index;
  std::unique_ptr<UnsavedEdits> unsavedEdits;
  ArchiveKeyboardFlags flags;
  std::unique_ptr<ArchiveBrowser> browser;
};

} // namespace notlet
