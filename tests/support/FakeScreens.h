#pragma once

#include "platform/Screens.h"

namespace notlet {

/// Screens that the test places; the first is the main one.
class FakeScreens final : public Screens {
 public:
  [[nodiscard]] std::vector<ScreenArea> all() const override { return areas; }
  [[nodiscard]] std::optional<ScreenArea> main() const override {
    return areas.empty() ? std::nullopt : std::optional(areas.front());
  }
  [[nodiscard]] QRect toQt(const QRectF& rect) const override { return flipped(rect).toRect(); }
  [[nodiscard]] QRectF fromQt(const QRect& rect) const override { return flipped(rect); }

  void set(std::vector<ScreenArea> next) {
    areas = std::move(next);
    Q_EMIT changed();
  }

  std::vector<ScreenArea> areas = {{1, {0, 0, 1440, 900}, {0, 0, 1440, 875}}};

 private:
  [[nodiscard]] QRectF flipped(const QRectF& rect) const {
    const double height = areas.empty() ? 0 : areas.front().frame.height();
    return {rect.x(), height - rect.y() - rect.height(), rect.width(), rect.height()};
  }
};

} // namespace notlet
