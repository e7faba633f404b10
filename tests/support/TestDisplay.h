#pragma once

#include "support/VirtualDisplay.h"

namespace notlet {

/// The X server on which this test program runs; main() says once which.
inline VirtualDisplay& testDisplay(VirtualDisplay* display = nullptr) {
  static VirtualDisplay* const known = display;
  return *known;
}

} // namespace notlet
