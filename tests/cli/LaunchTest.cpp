#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "NotletProcess.h"
#include "support/FakeInstance.h"

namespace notlet {
namespace {

using ::testing::ElementsAre;
using Kind = LaunchRequest::Kind;
using Words = NotletProcess::Words;

/// The window program's place taken by a script beside a copy of the command line.
class LaunchTest : public ::testing::Test {
 protected:
  LaunchTest() {
    const std::filesystem::path bin = notlet.home() / "bin";
    std::filesystem::create_directories(bin);
    std::filesystem::copy_file(notlet.program, bin / "notlet");
    notlet.program = (bin / "notlet").string();
    notlet.environment["XDG_RUNTIME_DIR"] = (notlet.home() / "run").string();
    writeFile(bin / "notlet-desktop",
              "#!/bin/sh\nprintf '%s\\n' \"$XDG_ACTIVATION_TOKEN\" \"$@\" > $HOME/started\n");
    std::filesystem::permissions(bin / "notlet-desktop", std::filesystem::perms::owner_all);
  }

  [[nodiscard]] std::filesystem::path socket() const { return notlet.home() / "run/notlet/notlet.socket"; }
  [[nodiscard]] std::string started() const { return fileContents(notlet.home() / "started"); }

  void expectFailure(const Words& words, int status, const std::string& message) const {
    const Finished finished = notlet.run(words);
    EXPECT_EQ(finished.status, status);
    EXPECT_EQ(finished.errors, "notlet: " + message + "\n");
    EXPECT_EQ(finished.output, "");
  }

  NotletProcess notlet;
};

TEST_F(LaunchTest, reachesTheRunningProgram) {
  const FakeInstance running(socket());
  notlet.environment["XDG_ACTIVATION_TOKEN"] = "token";
  notlet.environment["DESKTOP_STARTUP_ID"] = "older";
  const std::string longLink = "notlet:" + std::string(100'000, 'x');
  for (const Words& words : {Words{}, {"capture"}, {"open", "notlet:x", longLink}, {"open", "--", "notlet:"}})
    EXPECT_EQ(notlet.succeed(words).output, "");
  notlet.environment.erase("XDG_ACTIVATION_TOKEN");
  EXPECT_EQ(notlet.succeed({"capture"}).output, "");
  EXPECT_THAT(running.requests(), ElementsAre(LaunchRequest{Kind::activate, {}, "token"},
                                              LaunchRequest{Kind::capture, {}, "token"},
                                              LaunchRequest{Kind::open, {"notlet:x", longLink}, "token"},
                                              LaunchRequest{Kind::open, {"notlet:"}, "token"},
                                              LaunchRequest{Kind::capture, {}, "older"}));
  EXPECT_EQ(started(), "");
}

TEST_F(LaunchTest, startsTheProgramWhenNoneRuns) {
  notlet.environment["XDG_ACTIVATION_TOKEN"] = "token";
  const std::vector<std::pair<Words, std::string>> cases{
      {{}, "token\n"},
      {{"capture"}, "token\n--capture\n"},
      {{"open", "notlet:a b", "notlet:'$HOME"}, "token\nnotlet:a b\nnotlet:'$HOME\n"},
  };
  {
    const FakeInstance ended(socket());
  }
  for (const auto& [words, expected] : cases) {
    EXPECT_EQ(notlet.succeed(words).output, "");
    EXPECT_EQ(started(), expected);
  }
  // Looking for a program leaves nothing behind.
  const std::filesystem::directory_iterator files(socket().parent_path());
  EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST_F(LaunchTest, findsTheRunningProgramOfAnotherSession) {
  // The session's folder is there, with what a program left that has ended.
  {
    const FakeInstance ended(socket());
  }
  const FakeInstance running(notlet.home() / ".local/state/notlet/notlet.socket");
  EXPECT_EQ(notlet.succeed({"capture"}).output, "");
  EXPECT_EQ(running.requests().size(), 1U);
}

TEST_F(LaunchTest, opensAllLinksOrNone) {
  const FakeInstance running(socket());
  for (const char* foreign :
       {"https://example.org/", "", "x", "notlets:x", "Notlet:x", " notlet:x", "file:notlet:x"})
    expectFailure({"open", "notlet:x", "--", foreign}, 2,
                  std::string("“") + foreign +
                      "” is not a link that begins with “notlet:”; nothing was opened.");
  expectFailure({"open", "notlet:\xff"}, 1, "The link is not UTF-8.");
  expectFailure({"open"}, 2, "It is used so: notlet open URL...");
  expectFailure({"capture", "this"}, 2, "It is used so: notlet capture");
  expectFailure({"capture", "--json"}, 2, "It is used so: notlet capture");
  EXPECT_TRUE(running.requests().empty());
  EXPECT_EQ(started(), "");
}

TEST_F(LaunchTest, tellsWhyTheRunningProgramRefuses) {
  const FakeInstance running(socket(), "-Not today.");
  expectFailure({"capture"}, 1, "Not today.");
  EXPECT_EQ(started(), "");
}

} // namespace
} // namespace notlet
