#include "commands/NotificationCenter.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace notlet {

TEST(NotificationCenter, DeliversOnlyTheObservedNameWithItsObject) {
  NotificationCenter center;
  QObject context;
  std::vector<CommandObject> received;
  center.observe(CommandName::searchMacHashtags, &context,
                 [&](const CommandObject& object) { received.push_back(object); });

  center.post(CommandName::openMacArchive);
  center.post(CommandName::searchMacHashtags, "backspace");
  center.post(CommandName::searchMacHashtags);

  EXPECT_EQ(received, (std::vector<CommandObject>{"backspace", std::nullopt}));
}

TEST(NotificationCenter, ForgetsObserversThatAreGone) {
  NotificationCenter center;
  auto context = std::make_unique<QObject>();
  int calls = 0;
  center.observe(CommandName::openMacArchive, context.get(), [&](const CommandObject&) { ++calls; });

  center.post(CommandName::openMacArchive);
  context.reset();
  center.post(CommandName::openMacArchive);

  EXPECT_EQ(calls, 1);
}

// A screen may vanish because of the very command that it is handling.
TEST(NotificationCenter, SurvivesAnObserverThatDeletesItselfAndOthers) {
  NotificationCenter center;
  auto first = std::make_unique<QObject>();
  auto second = std::make_unique<QObject>();
  int calls = 0;
  center.observe(CommandName::openMacNotlet, first.get(), [&](const CommandObject&) {
    ++calls;
    second.reset();
    first.reset();
  });
  center.observe(CommandName::openMacNotlet, second.get(), [&](const CommandObject&) { calls += 100; });

  center.post(CommandName::openMacNotlet);

  EXPECT_EQ(calls, 1);
}

} // namespace notlet
