#pragma once

#include "platform/diagnostics/failure.h"

namespace platform {

// What the program's windows cannot do without a display; what failures of opening them tried.
inline constexpr const char* kOpenWindows = "open the program's windows";

// Whether the desktop has a display that answers, X or Wayland, and if not, why. The toolkit's
// other kinds of display are none: they cannot be seen, let anybody in over the network, or take
// over a console. Loads nothing.
Status CheckDisplay();

}  // namespace platform
