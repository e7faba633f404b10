#pragma once

#include "platform/StatusItem.h"

namespace notlet {

/// An icon in no tray; the test emits its signals.
class FakeStatusItem final : public StatusItem {
 public:
  [[nodiscard]] bool isShown() const override { return shown; }
  [[nodiscard]] std::optional<QRect> area() const override { return iconArea; }

  bool shown = true;
  std::optional<QRect> iconArea;
};

} // namespace notlet
