#pragma once

namespace platform {

// Whether the desktop has a display that answers. Loads nothing.
bool DisplayIsThere();

}  // namespace platform
