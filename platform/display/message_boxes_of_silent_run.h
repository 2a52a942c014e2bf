#pragma once

#include <sys/types.h>

#include <optional>

#include "platform/display/message_boxes_as_lines.h"
#include "platform/display/window_module_loader.h"

namespace platform {

// The window system of a run without windows of its own. Its boxes appear on the display if there
// is one, each from a process of its own: the toolkit ends its process when the display breaks off,
// which must not end the run. Where no box can appear, and once a signal has asked the run to end,
// they go out as lines.
class MessageBoxesOfSilentRun : public MessageBoxesAsLines {
  public:
    MessageBoxesOfSilentRun(const WindowModuleParams& params, std::FILE* lines)
        : MessageBoxesAsLines(lines), params_(params) {}

    int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) override;

  private:
    [[noreturn]] void ShowBoxAndExit(pid_t run, const WCHAR* text, const WCHAR* caption,
                                     UINT type) const;
    // Nothing when the box could not appear or has vanished.
    std::optional<int> ShowOnDisplay(const WCHAR* text, const WCHAR* caption, UINT type) const;

    WindowModuleParams params_;
    bool hasFailed_ = false;
};

}  // namespace platform
