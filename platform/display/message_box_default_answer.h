#pragma once

#include "core/window_operations.h"

namespace platform {

// The host's own kind of box, with the buttons "Try again" and "Give up", and the answer of the
// first; any other answer is that of the second.
inline constexpr UINT kTryAgainBox = 0x5;
inline constexpr int kTryAgain = 4;

// How a box is answered when no user can: OK, or No where Yes and No are offered.
inline int UnattendedAnswer(UINT type) {
    constexpr UINT kButtonsMask = 0xF;
    return (type & kButtonsMask) == MB_YESNO ? IDNO : IDOK;
}

}  // namespace platform
