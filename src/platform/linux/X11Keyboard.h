#pragma once

#include "platform/linux/X11Connection.h"

// The keyboard extension of the X server, whose header has a field with the name of a keyword.
#define explicit explicitComponents
#include <xcb/xkb.h>
#undef explicit
