#pragma once

#include <cstdio>

#include "platform/seam/refusing_window_system.h"

namespace platform {

// The window system of a run without a display: a box goes out as one line "[caption] text" and is
// answered at once. No other line begins with "[".
class MessageBoxesAsLines : public RefusingWindowSystem {
  public:
    // `lines` stays the caller's.
    explicit MessageBoxesAsLines(std::FILE* lines) : lines_(lines) {}

    int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) override;

  private:
    std::FILE* lines_;
};

}  // namespace platform
