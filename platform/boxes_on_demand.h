#pragma once

#include <memory>

#include "platform/console_windows.h"
#include "platform/display.h"

namespace platform {

// The window system of a run without windows of its own. Its boxes appear on the display if there
// is one, which is opened for the first of them; else they go out as lines.
class BoxesOnDemand : public ConsoleWindows {
  public:
    BoxesOnDemand(const DisplayNeeds& needs, std::FILE* lines)
        : ConsoleWindows(lines), needs_(needs) {}

    int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) override;

  private:
    DisplayNeeds needs_;
    bool tried_ = false;
    std::unique_ptr<DisplayWindows> windows_;
};

}  // namespace platform
