#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "navigation/MainNavigation.h"
#include "support/FakeFileOpener.h"
#include "support/FakeFocusedControl.h"
#include "support/FakeSteadyClock.h"

namespace notlet {

/// A main window's navigation with a keyboard of its own; notes which commands are posted.
class NavigationFixture : public testing::Test {
 protected:
  NavigationFixture() {
    QObject::connect(&center, &NotificationCenter::posted, &context,
                     [this](CommandName name) { posted.push_back(name); });
  }

  FakeFileOpener opener;
  FakeSteadyClock clock;
  FakeFocusedControl focusedControl;
  NotificationCenter center;
  MacShortcutSettings settings{std::nullopt, opener};
  MacShortcutCoordinator coordinator{{center, settings, clock, focusedControl}};
  MainNavigation navigation{center, coordinator};
  std::vector<CommandName> posted;
  QObject context;
};

} // namespace notlet
