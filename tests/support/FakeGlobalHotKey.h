#pragma once

#include <optional>
#include <utility>

#include "platform/GlobalHotKey.h"

namespace notlet {

/// A hot key that the test presses, and that is refused when told to.
class FakeGlobalHotKey final : public GlobalHotKey {
 public:
  void install() override {
    isInstalled = false;
    if (refusal)
      Q_EMIT failed(*refusal);
    retry();
  }
  void retry() override {
    if (refusal || std::exchange(isInstalled, true))
      return;
    Q_EMIT installed();
  }
  void uninstall() override { isInstalled = false; }

  std::optional<Failure> refusal;
  bool isInstalled = false;
};

} // namespace notlet
