#pragma once

#include <QGuiApplication>
#include <QScreen>
#include <vector>

#include "shell/WindowPlacement.h"

namespace notlet {

/// The screens as they are now, for placing windows.
[[nodiscard]] inline std::vector<PlacementScreen> placementScreens() {
  std::vector<PlacementScreen> screens;
  for (const QScreen* screen : QGuiApplication::screens())
    screens.push_back({screen->geometry(), screen->availableGeometry()});
  return screens;
}

} // namespace notlet
