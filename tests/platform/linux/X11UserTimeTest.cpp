#include "platform/linux/X11UserTime.h"

#include <gtest/gtest.h>

#include "platform/linux/X11HotKey.h"

#include <QSignalSpy>

namespace notlet {

TEST(ActivationToken, CarriesTheTimeOfTheUser) {
  struct Case {
    const char* token;
    std::optional<std::uint32_t> time;
  };
  const Case cases[] = {
      {"gnome-shell/Notlet/1234-0-host_TIME98765", 98765},
      {"a_TIME1_TIME4294967295", 4294967295},
      {"_TIME7", 7},
      {"", std::nullopt},
      {"0e8b2f0c-1c0e-4a59", std::nullopt},
      {"x_TIME", std::nullopt},
      {"x_TIME0", std::nullopt},
      {"x_TIME-5", std::nullopt},
      {"x_TIME12 ", std::nullopt},
      {"x_TIME4294967296", std::nullopt},
  };
  for (const auto& [token, time] : cases)
    EXPECT_EQ(timeOfActivationToken(token), time) << token;
}

// What the user did later would otherwise be answered with an old time, which window managers refuse.
TEST(X11UserTime, IsGivenOnce) {
  X11UserTime time;
  EXPECT_EQ(time.take(), std::nullopt);
  time.note(5);
  time.note(7);
  EXPECT_EQ(time.take(), 7U);
  EXPECT_EQ(time.take(), std::nullopt);
}

TEST(X11HotKey, SaysThatThereIsNoXServer) {
  X11UserTime time;
  X11HotKey hotKey(time);
  const QSignalSpy failures(&hotKey, &GlobalHotKey::failed);
  hotKey.install();
  ASSERT_EQ(failures.count(), 1);
  EXPECT_EQ(failures[0][0].value<GlobalHotKey::Failure>(), GlobalHotKey::Failure::notInstalled);
  hotKey.uninstall();
}

} // namespace notlet
