#pragma once

#include "platform/Appearance.h"

namespace notlet {

/// As dark as the test says.
class FakeAppearance final : public Appearance {
 public:
  [[nodiscard]] bool isDark() const override { return m_isDark; }

  void setDark(bool isDark) {
    m_isDark = isDark;
    Q_EMIT changed();
  }

 private:
  bool m_isDark = false;
};

} // namespace notlet
