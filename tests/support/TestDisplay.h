#pragma once

#include "support/VirtualDisplay.h"

namespace notlet {

/// The X server on which this test program runs; it starts with the first call and ends with the program.
inline VirtualDisplay& testDisplay() {
  static VirtualDisplay display;
  return display;
}

} // namespace notlet
