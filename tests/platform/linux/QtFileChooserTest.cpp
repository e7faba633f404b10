#include "platform/linux/QtFileChooser.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
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
