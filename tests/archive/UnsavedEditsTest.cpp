#include "archive/UnsavedEdits.h"

#include <QTest>
#include <fstream>
#include <gmock/gmock.h>

#include "archive/ArchiveFixture.h"

namespace notlet {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Edits that are not saved, through the archive that makes them.
class UnsavedEditsTest : public ArchiveFixture {
 protected:
  void edit(const Uuid& id, const std::string& draft) const {
    browser->beginEditing(id);
    browser->setEditDraft(draft);
  }
  [[nodiscard]] std::size_t fileCount() const {
    std::error_code error;
    const std::filesystem::directory_iterator files(editFolder(), error);
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
  }
  [[nodiscard]] bool sees(const std::function<bool()>& condition) const {
    return QTest::qWaitFor(condition, 10'000);
  }
};

} // namespace

TEST_F(UnsavedEditsTest, NoEditIsLostHoweverTheEditorIsClosed) {
  const auto ids = fill({"first", "second"});
  const std::map<std::string, std::function<void()>> waysOut = {
      {"arrow", [&] { browser->moveVertically(1); }},
      {"cancel", [&] { browser->cancelEditing(); }},
      {"other row", [&] { browser->select(ids[1]); }},
      {"other editor", [&] { browser->beginEditing(ids[1]); }},
      {"search field", [&] { browser->focusSearchField(); }},
      {"other section",
       [&] {
         browser->disappear();
         browser->appear();
       }},
      {"end of the program", [&] { start(); }},
  };
  for (const auto& [name, leave] : waysOut) {
    SCOPED_TRACE(name);
    const std::string draft = "  first, via " + name + " \n";
    edit(ids[0], draft);
    EXPECT_FALSE(browser->hasUnsavedEdit(ids[0])) << "it is in the editor";
    leave();
    EXPECT_NE(state().editingID, ids[0]);
    ASSERT_TRUE(browser->hasUnsavedEdit(ids[0]));
    EXPECT_FALSE(browser->hasUnsavedEdit(ids[1]));
    browser->restoreUnsavedEdit(ids[0]);
    EXPECT_EQ(state().editingID, ids[0]);
    EXPECT_EQ(state().selectedID, ids[0]);
    EXPECT_EQ(state().editDraft, draft);
    browser->cancelEditing();
    EXPECT_TRUE(browser->hasUnsavedEdit(ids[0])) << "until it is saved";
  }
  browser->restoreUnsavedEdit(ids[0]);
  browser->saveEdit(ids[0]);
  EXPECT_FALSE(browser->hasUnsavedEdit(ids[0]));
  start();
  EXPECT_FALSE(browser->hasUnsavedEdit(ids[0]));
  EXPECT_EQ(fileCount(), 0U);
}

TEST_F(UnsavedEditsTest, AnEditThatChangesNothingIsNotKept) {
  const Uuid id = fill({"first"})[0];
  for (const char* draft : {"first", "  first\n", "", " \n "}) {
    edit(id, "changed");
    browser->setEditDraft(draft);
    browser->cancelEditing();
    EXPECT_FALSE(browser->hasUnsavedEdit(id)) << draft;
  }
  // One that somebody else has made as well.
  edit(id, "the same idea");
  browser->cancelEditing();
  changeElsewhere(id, "the same idea");
  EXPECT_TRUE(sees([&] { return !browser->hasUnsavedEdit(id); }));
}

TEST_F(UnsavedEditsTest, StartingAnewWarnsThatTheEarlierEditWillBeReplaced) {
  const Uuid id = fill({"first"})[0];
  edit(id, "an hour of work");
  browser->cancelEditing();
  browser->beginEditing(id);
  EXPECT_EQ(state().editDraft, "first");
  EXPECT_NE(browser->editNotice(), "");
  browser->cancelEditing();
  EXPECT_EQ(browser->editNotice(), "");
  browser->restoreUnsavedEdit(id);
  EXPECT_EQ(state().editDraft, "an hour of work");
  EXPECT_EQ(browser->editNotice(), "");
  browser->cancelEditing();
  browser->beginEditing(id);
  const std::string notice = browser->editNotice();
  changeElsewhere(id, "theirs");
  ASSERT_TRUE(sees([&] { return browser->editNotice().size() > notice.size(); }));
  EXPECT_TRUE(browser->editNotice().ends_with(notice)) << "both are true";
  QObject::connect(browser.get(), &ArchiveBrowser::changed,
                   [&] { EXPECT_FALSE(browser->editNotice().ends_with(notice)); });
  browser->setEditDraft("another idea");
  EXPECT_FALSE(browser->editNotice().ends_with(notice));
}

TEST_F(UnsavedEditsTest, DeletingTheNotletDeletesItsUnsavedEdit) {
  const Uuid id = fill({"first", "second"})[0];
  edit(id, "changed");
  browser->requestDeletion(id);
  browser->deleteSelectedNotlet();
  EXPECT_EQ(browser->orphanedEdit(), nullptr);
  start();
  EXPECT_EQ(browser->orphanedEdit(), nullptr);
}

TEST_F(UnsavedEditsTest, AChangeElsewhereIsToldAndTheUsersTextStands) {
  const Uuid id = fill({"first"})[0];
  edit(id, "mine");
  EXPECT_EQ(browser->editNotice(), "");
  changeElsewhere(id, "theirs");
  ASSERT_TRUE(sees([&] { return !browser->editNotice().empty(); }));
  EXPECT_EQ(state().editDraft, "mine");
  EXPECT_EQ(context->find(id)->content, "theirs");
  browser->saveEdit(id);
  EXPECT_EQ(storedText(id), "mine");
  EXPECT_EQ(browser->editNotice(), "");
  // What was written elsewhere is what a new edit starts from.
  changeElsewhere(id, "theirs again");
  ASSERT_TRUE(sees([&] { return context->find(id)->content == "theirs again"; }));
  browser->beginEditing(id);
  EXPECT_EQ(state().editDraft, "theirs again");
  EXPECT_EQ(browser->editNotice(), "");
}

TEST_F(UnsavedEditsTest, TheTextOfANotletDeletedElsewhereCanBeStoredAnew) {
  const auto ids = fill({"first", "second"});
  edit(ids[0], "worth keeping #yes");
  storeElsewhere({}, {ids[0]});
  ASSERT_TRUE(sees([&] { return browser->orphanedEdit() != nullptr; }));
  EXPECT_EQ(*browser->orphanedEdit(), "worth keeping #yes");
  EXPECT_FALSE(state().editingID);
  EXPECT_FALSE(flags.editingActive);

  start();
  ASSERT_NE(browser->orphanedEdit(), nullptr) << "a restart does not lose it";
  breakStore();
  browser->saveOrphanedEdit();
  EXPECT_TRUE(state().saveError);
  ASSERT_NE(browser->orphanedEdit(), nullptr);
  EXPECT_EQ(context->size(), 1U);
  mendStore();
  browser->saveOrphanedEdit();
  EXPECT_EQ(browser->orphanedEdit(), nullptr);
  EXPECT_THAT(results(), ElementsAre("worth keeping #yes", "second"));
  EXPECT_EQ(browser->selectedNotlet()->hashtags, WordList{"yes"});
}

TEST_F(UnsavedEditsTest, AnUntouchedEditorOfANotletDeletedElsewhereJustCloses) {
  const auto ids = fill({"first", "second"});
  browser->beginEditing(ids[0]);
  storeElsewhere({}, {ids[0]});
  ASSERT_TRUE(sees([&] { return !state().editingID; }));
  EXPECT_EQ(browser->orphanedEdit(), nullptr);
}

TEST_F(UnsavedEditsTest, ADiscardedOrphanIsGoneForGood) {
  const auto ids = fill({"first", "second"});
  for (const Uuid& id : ids) {
    edit(id, "changed");
    browser->cancelEditing();
  }
  storeElsewhere({}, ids);
  ASSERT_TRUE(sees([&] { return context->size() == 0; }));
  browser->discardOrphanedEdit();
  ASSERT_NE(browser->orphanedEdit(), nullptr) << "one after the other";
  browser->discardOrphanedEdit();
  EXPECT_EQ(browser->orphanedEdit(), nullptr);
  start();
  EXPECT_EQ(browser->orphanedEdit(), nullptr);
}

TEST_F(UnsavedEditsTest, SaysWhyAnEditIsNotSafeAsLongAsThatIsSo) {
  const auto ids = fill({"first", "second"});
  const auto inTheWay = editFolder() / (ids[0].text() + ".txt");
  std::filesystem::create_directories(inTheWay / "x");
  const auto editAndWait = [&](const Uuid& id, const std::string& draft) {
    edit(id, draft);
    unsavedEdits->flush();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents();
  };
  editAndWait(ids[0], "changed");
  const std::string warning = browser->draftWarning();
  EXPECT_NE(warning, "");
  editAndWait(ids[1], "changed");
  EXPECT_EQ(browser->draftWarning(), warning) << "the other one is safe, this one is not";
  browser->dismissDraftWarning();
  editAndWait(ids[0], "changed again");
  EXPECT_EQ(browser->draftWarning(), "") << "nothing new";
  std::filesystem::remove_all(inTheWay);
  editAndWait(ids[0], "safe");
  std::filesystem::remove(inTheWay);
  std::filesystem::create_directories(inTheWay / "x");
  editAndWait(ids[0], "in trouble again");
  EXPECT_EQ(browser->draftWarning(), warning);
  std::filesystem::remove_all(inTheWay);
  editAndWait(ids[0], "safe again");
  EXPECT_EQ(browser->draftWarning(), "");
}

TEST_F(UnsavedEditsTest, FilesThatAreNoEditsAreLeftAlone) {
  std::filesystem::create_directories(editFolder());
  const std::string id = Uuid::random().text();
  std::ofstream(editFolder() / "notes.txt") << "not ours";
  std::ofstream(editFolder() / (id + ".txt.unreadable-1")) << "set aside before";
  std::ofstream(editFolder() / (id + ".txt")) << "caf\xE9";
  start();
  EXPECT_THAT(unsavedEdits->texts(), IsEmpty());
  EXPECT_EQ(fileCount(), 3U);
  edit(fill({"first"})[0], "safe");
  unsavedEdits->flush();
  QCoreApplication::sendPostedEvents();
  EXPECT_NE(browser->draftWarning(), "") << "the text that could not be read is still not there";
  browser->dismissDraftWarning();
  EXPECT_EQ(browser->draftWarning(), "");
}

} // namespace notlet
