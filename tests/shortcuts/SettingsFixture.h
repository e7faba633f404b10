#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "shortcuts/SettingsScreen.h"
#include "support/FakeFileOpener.h"
#include "support/FakeFocusedControl.h"
#include "support/TemporaryDirectory.h"

namespace notlet {

/// The rules of the settings window on a shortcut file of their own.
class SettingsFixture : public testing::Test {
 protected:
  void put(std::string_view contents) const { std::ofstream(file, std::ios::binary) << contents; }
  void put(const MacShortcutConfig& config) const { put(config.encode()); }
  [[nodiscard]] std::string contents() const {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  [[nodiscard]] const MacShortcutConfig& shown() const { return draft.state().draft; }
  [[nodiscard]] std::string alert() const { return draft.state().alert.value_or(""); }
  [[nodiscard]] static KeyPress typed(const char* characters, std::uint32_t modifiers = 0) {
    return {KeyCode::other, characters, characters, modifiers};
  }
  [[nodiscard]] static MacShortcutConfig withLeader(const char* leader) {
    MacShortcutConfig config;
    config.leader = leader;
    return config;
  }

  inline static const KeyPress escape{KeyCode::escape, std::nullopt, std::nullopt, 0};

  TemporaryDirectory home;
  std::filesystem::path file = home.path() / "config.json";
  FakeFileOpener opener;
  FakeFocusedControl focusedControl;
  MacShortcutSettings settings{home.path(), opener};
  ShortcutSettingsDraft draft{settings};
  SettingsScreen screen{draft, focusedControl};
};

} // namespace notlet
