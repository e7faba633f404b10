#pragma once

#include <optional>

#include "platform/GlobalHotKey.h"

namespace notlet {

/// A hot key that the test presses, and that is refused when told to.
class FakeGlobalHotKey final : public GlobalHotKey {
 public:
  void install() override {
    if (refusal)
      Q_EMIT failed(*refusal);
    else
      isInstalled = true;
  }
  void uninstall() override { isInstalled = false; }

  std::optional<Failure> refusal;
  bool isInstalled = false;
};

} // namespace notlet
