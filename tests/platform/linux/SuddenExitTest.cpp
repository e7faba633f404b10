#include "platform/linux/SuddenExit.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <filesystem>

#include "platform/DurableFile.h"
#include "support/TemporaryDirectory.h"
#include "support/VirtualDisplay.h"

namespace notlet {

namespace {

constexpr int patience = 20000;

/// What is on disk of a draft that was typed right before the X server went away.
std::optional<std::string> draftAfterLoss(bool doesLastWork) {
  const TemporaryDirectory directory;
  VirtualDisplay display;
  QProcess typist;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("DISPLAY"), QString::fromStdString(display.name()));
  environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
  typist.setProcessEnvironment(environment);
  typist.start(QStringLiteral(NOTLET_DRAFT_TYPIST),
               {QString::fromStdString(directory.path().string()),
                doesLastWork ? QStringLiteral("1") : QStringLiteral("0")});
  EXPECT_TRUE(typist.waitForReadyRead(patience));
  display.killServer();
  EXPECT_TRUE(typist.waitForFinished(patience));
  EXPECT_EQ(typist.exitStatus(), QProcess::NormalExit);
  return readWholeFile(directory.path() / "typist.txt", 1000).value_or(std::nullopt);
}

} // namespace

TEST(SuddenExit, SavesWhatWasTypedWhenTheXServerGoesAway) {
  EXPECT_EQ(draftAfterLoss(true), "typed just now");
}

// Otherwise the test above would prove nothing.
TEST(SuddenExit, IsWhatSavesIt) {
  EXPECT_EQ(draftAfterLoss(false), std::nullopt);
}

TEST(SuddenExit, LeavesAnOrderlyEndAlone) {
  bool done = false;
  {
    const SuddenExit work([&done] { done = true; });
  }
  EXPECT_FALSE(done);
  EXPECT_EXIT(
      {
        const SuddenExit first([] { std::fputs("first\n", stderr); });
        const SuddenExit second([] { std::fputs("second\n", stderr); });
        std::exit(3);
      },
      testing::ExitedWithCode(3), "^second\n$");
}

} // namespace notlet
