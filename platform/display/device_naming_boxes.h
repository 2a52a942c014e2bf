#pragma once

#include "platform/diagnostics/run_log.h"
#include "platform/seam/forwarding_window_system.h"

namespace platform {

// The boxes of one of several runs: a line of its log, which names the device, comes before the
// first one.
class DeviceNamingBoxes : public ForwardingWindowSystem {
  public:
    // Both stay the caller's.
    DeviceNamingBoxes(WindowSystem& inner, RunLog& log)
        : ForwardingWindowSystem(inner), log_(log) {}

    int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) override {
        if (!isNamed_) {
            isNamed_ = true;
            log_.Say("its messages:");
        }
        return inner().MessageBoxW(owner, text, caption, type);
    }

  private:
    RunLog& log_;
    bool isNamed_ = false;
};

}  // namespace platform
