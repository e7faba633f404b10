#pragma once

#include "platform/Screens.h"

namespace notlet {

// A laptop with a bar across its top, and monitors on all its sides. The one below has a panel at its bottom.
inline const ScreenArea laptop{1, {0, 0, 1440, 900}, {0, 0, 1440, 875}};
inline const ScreenArea onTheRight{2, {1440, 100, 1920, 1080}, {1440, 100, 1920, 1080}};
inline const ScreenArea onTheLeft{3, {-1280, 0, 1280, 1024}, {-1280, 0, 1280, 1024}};
inline const ScreenArea above{4, {0, 900, 1440, 900}, {0, 900, 1440, 900}};
inline const ScreenArea below{5, {200, -768, 1024, 768}, {200, -728, 1024, 728}};
inline const ScreenArea tiny{6, {0, 0, 360, 240}, {0, 0, 360, 240}};

} // namespace notlet
