#include "platform/linux/QtFileChooser.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QTest>
#include <fstream>

#include "support/TemporaryDirectory.h"

namespace notlet {
namespace {

class QtFileChooserTest : public testing::Test {
 protected:
  static QFileDialog* dialog() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      auto* found = qobject_cast<QFileDialog*>(window);
      if (found != nullptr && found->isVisible())
        return found;
    }
    return nullptr;
  }
  FileChooser::Answer keep() {
    return [this](const auto& answer) {
      ASSERT_TRUE(answer);
      ++answers;
      chosen = *answer;
    };
  }

  TemporaryDirectory directory;
  QtFileChooser chooser;
  int answers = 0;
  std::optional<std::filesystem::path> chosen;
};

TEST_F(QtFileChooserTest, GivesTheFileThatWasChosen) {
  const auto file = directory.path() / "mïne.json";
  std::ofstream(file) << "[]";
  chooser.chooseFileToOpen("Import", keep());
  ASSERT_NE(dialog(), nullptr);
  EXPECT_EQ(dialog()->windowTitle(), QStringLiteral("Import"));
  dialog()->selectFile(QString::fromStdString(file.string()));
  static_cast<QDialog*>(dialog())->accept();
  EXPECT_EQ(chosen, file);
  EXPECT_EQ(answers, 1);
}

TEST_F(QtFileChooserTest, WhatIsTypedCountsBeforeWhatIsMarked) {
  const auto file = directory.path() / "mine.json";
  std::ofstream(file) << "[]";
  std::filesystem::create_directory(directory.path() / "folder");
  chooser.chooseFileToOpen("Import", keep());
  ASSERT_NE(dialog(), nullptr);
  dialog()->setDirectory(QString::fromStdString(directory.path().string()));
  auto* line = dialog()->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
  auto* list = dialog()->findChild<QListView*>(QStringLiteral("listView"));
  QModelIndexList folder;
  ASSERT_TRUE(QTest::qWaitFor([&] {
    folder = list->model()->match(list->model()->index(0, 0, list->rootIndex()), Qt::DisplayRole,
                                  QStringLiteral("folder"));
    return !folder.isEmpty();
  }));
  line->setText(QString::fromStdString(file.string()));
  list->selectionModel()->select(folder.front(),
                                 QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  static_cast<QDialog*>(dialog())->accept();
  EXPECT_EQ(chosen, file);
}

TEST_F(QtFileChooserTest, ProposesANameAndAddsItsSuffix) {
  chooser.chooseFileToSave("Export", "notlet-themes", keep());
  ASSERT_NE(dialog(), nullptr);
  dialog()->setDirectory(QString::fromStdString(directory.path().string()));
  dialog()->selectFile(QStringLiteral("notlet-themes"));
  static_cast<QDialog*>(dialog())->accept();
  EXPECT_EQ(chosen, directory.path() / "notlet-themes.json");
}

TEST_F(QtFileChooserTest, CancellingIsAnAnswerToo) {
  chooser.chooseFileToOpen("Import", keep());
  ASSERT_NE(dialog(), nullptr);
  dialog()->reject();
  EXPECT_EQ(answers, 1);
  EXPECT_FALSE(chosen);
}

} // namespace
} // namespace notlet
