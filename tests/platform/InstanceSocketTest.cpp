#include "platform/InstanceSocket.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <fstream>

#include "support/FakeInstance.h"
#include "support/TemporaryDirectory.h"

namespace notlet {

namespace {

using Kind = LaunchRequest::Kind;
using namespace std::chrono_literals;

class InstanceSocketTest : public testing::Test {
 protected:
  TemporaryDirectory directory;
  std::filesystem::path socket = instanceSocket(directory.path());
};

} // namespace

// The reason must arrive although the other end hangs up in the middle of the message.
TEST_F(InstanceSocketTest, TellsWhyARequestIsRefused) {
  const FakeInstance instance(socket, "-Not today.", FakeInstance::Reads::nothing);
  for (const std::size_t length : {std::size_t{10}, std::size_t{4'000'000}}) {
    const auto refused = handOver({Kind::open, {std::string(length, 'x')}, ""}, socket);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().message, "Not today.");
  }
}

TEST_F(InstanceSocketTest, FindsNobodyWhereNobodyListens) {
  EXPECT_EQ(handOver({}, socket), HandOver::nobodyThere);
  {
    const FakeInstance gone(socket);
  }
  EXPECT_TRUE(std::filesystem::exists(socket));
  EXPECT_EQ(handOver({}, socket), HandOver::nobodyThere);
  std::ofstream(directory.path() / "file") << "no socket";
  EXPECT_EQ(handOver({}, directory.path() / "file"), HandOver::nobodyThere);
  EXPECT_EQ(handOver({}, directory.path() / "absent" / "socket"), HandOver::nobodyThere);
  EXPECT_EQ(handOver({}, directory.path() / std::string(200, 'x')), HandOver::nobodyThere);
  // One that is just ending has not taken the request: the next one has to.
  const FakeInstance ending(directory.path() / "ending", "");
  EXPECT_EQ(handOver({}, directory.path() / "ending"), HandOver::nobodyThere);
}

TEST_F(InstanceSocketTest, LooksIntoTheSessionsFolderOnlyWhenItIsTheUsersOwn) {
  const std::filesystem::path run = directory.path() / "run";
  qputenv("XDG_STATE_HOME", directory.path().c_str());
  qputenv("XDG_RUNTIME_DIR", run.c_str());
  const std::vector besideTheDrafts{directory.path() / "notlet"};
  const auto directories = [] { return instanceDirectories(Places::fromEnvironment()); };
  EXPECT_EQ(directories(), besideTheDrafts);
  std::ofstream(run) << "a file";
  EXPECT_EQ(directories(), besideTheDrafts);
  std::filesystem::remove(run);
  std::filesystem::create_directory(run);
  EXPECT_EQ(directories(), (std::vector{run / "notlet", besideTheDrafts[0]}));
  if (chown(run.c_str(), 65534, -1) == 0) {
    EXPECT_EQ(directories(), besideTheDrafts);
  }
}

TEST_F(InstanceSocketTest, DoesNotWaitForever) {
  const FakeInstance stuck(socket, std::nullopt, FakeInstance::Reads::nothing);
  for (const std::size_t length : {std::size_t{10}, std::size_t{4'000'000}}) {
    const auto silent = handOver({Kind::open, {std::string(length, 'x')}, ""}, socket, 50ms);
    ASSERT_FALSE(silent);
    EXPECT_EQ(silent.error().message, "Notlet is running but does not answer.");
  }
}

TEST_F(InstanceSocketTest, TellsNothingToAnotherUsersProgram) {
  if (geteuid() != 0)
    GTEST_SKIP() << "Only root can be two users.";
  const FakeInstance instance(socket);
  std::filesystem::permissions(directory.path(), std::filesystem::perms::all);
  std::filesystem::permissions(socket, std::filesystem::perms::all);
  Result<HandOver> result = HandOver::accepted;
  // The bare call changes this one thread, not the process.
  std::thread([&] {
    ASSERT_EQ(syscall(SYS_setresuid, -1, 65534, -1), 0);
    result = handOver({Kind::open, {"notlet:secret"}, ""}, socket);
  }).join();
  ASSERT_FALSE(result);
  EXPECT_NE(result.error().message.find("another user"), std::string::npos);
  EXPECT_TRUE(instance.requests().empty());
}

} // namespace notlet
