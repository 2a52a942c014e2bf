#pragma once

#include "core/window_operations.h"

namespace platform {

// How a box is answered when no user can: OK, or No where Yes and No are offered.
inline int UnattendedAnswer(UINT type) {
    constexpr UINT kButtonsMask = 0xF;
    return (type & kButtonsMask) == MB_YESNO ? IDNO : IDOK;
}

}  // namespace platform
