#include "platform/linux/SingleInstance.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>
#include <filesystem>
#include <fstream>
#include <thread>

#include "support/TemporaryDirectory.h"

namespace notlet {

namespace {

using Role = SingleInstance::Role;

class SingleInstanceTest : public testing::Test {
 protected:
  TemporaryDirectory directory;
  std::filesystem::path place = directory.path() / "run" / "notlet";
};

} // namespace

TEST_F(SingleInstanceTest, LaterStartsHandOverAndTheFirstComesForward) {
  SingleInstance first(place);
  ASSERT_EQ(first.start(), Role::First);
  const QSignalSpy spy(&first, &SingleInstance::activationRequested);
  for (int count = 1; count <= 3; ++count) {
    Result<Role> role = failure("not started");
    std::thread later([&] { role = SingleInstance(place).start(); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return spy.count() == count; }));
    later.join();
    EXPECT_EQ(role, Role::HandedOver);
  }
}

TEST_F(SingleInstanceTest, AnEndedInstanceLeavesThePlaceToTheNext) {
  {
    SingleInstance first(place);
    ASSERT_EQ(first.start(), Role::First);
  }
  EXPECT_EQ(SingleInstance(place).start(), Role::First);
}

// A crash leaves both files behind.
TEST_F(SingleInstanceTest, FilesWithoutAnInstanceAreNoInstance) {
  std::filesystem::create_directories(place);
  std::ofstream(place / "notlet.lock") << "";
  std::ofstream(place / "notlet.socket") << "";
  SingleInstance instance(place);
  EXPECT_EQ(instance.start(), Role::First);
  EXPECT_EQ(std::filesystem::status(place).permissions(), std::filesystem::perms::owner_all);
}

TEST_F(SingleInstanceTest, SaysWhatIsWrongWithThePlace) {
  std::ofstream(directory.path() / "run") << "a file";
  const auto blocked = SingleInstance(place).start();
  ASSERT_FALSE(blocked);
  EXPECT_NE(blocked.error().message.find("run"), std::string::npos);
  const auto tooLong = SingleInstance(directory.path() / std::string(200, 'x')).start();
  ASSERT_FALSE(tooLong);
  EXPECT_NE(tooLong.error().message.find("too long"), std::string::npos);
}

TEST_F(SingleInstanceTest, WithoutAPlaceEveryStartIsAFirst) {
  SingleInstance first(std::nullopt);
  EXPECT_EQ(first.start(), Role::First);
  EXPECT_EQ(SingleInstance(std::nullopt).start(), Role::First);
}

} // namespace notlet
