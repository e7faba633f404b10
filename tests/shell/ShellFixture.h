#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "shell/ExampleScreens.h"
#include "shell/MacFloatingPanelController.h"
#include "support/FakeFileOpener.h"
#include "support/FakeFloatingPanel.h"
#include "support/FakeFocusedControl.h"
#include "support/FakeScreens.h"
#include "support/FakeSteadyClock.h"
#include "support/MemoryDefaults.h"

namespace notlet {

/// Bubble mode on a laptop's screen; notes which commands are posted.
class ShellFixture : public testing::Test {
 protected:
  ShellFixture() {
    QObject::connect(&center, &NotificationCenter::posted, &context,
                     [this](CommandName name) { posted.push_back(name); });
  }

  [[nodiscard]] auto timesPosted(CommandName name) const { return std::ranges::count(posted, name); }

  FakeFileOpener opener;
  FakeSteadyClock clock;
  FakeFocusedControl focusedControl;
  NotificationCenter center;
  MacShortcutSettings shortcutSettings{std::nullopt, opener};
  MacShortcutCoordinator coordinator{{center, shortcutSettings, clock, focusedControl}};
  FakeScreens screens;
  MemoryDefaults defaults;
  FakeFloatingPanel panel;
  MacFloatingPanelController controller{{panel, screens, defaults, center, coordinator}};
  std::vector<CommandName> posted;
  QObject context;
};

} // namespace notlet
