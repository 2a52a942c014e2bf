#pragma once

#include "platform/diagnostics/run_log.h"
#include "platform/seam/device_store.h"
#include "platform/seam/forwarding_window_system.h"

namespace platform {

// Windows that have the registry stored before anybody is waited for: a box or a message can take
// any time, in which the process may be ended. Counts the boxes that report an error.
class RegistrySavingWindows : public ForwardingWindowSystem {
  public:
    // All stay the caller's.
    RegistrySavingWindows(WindowSystem& inner, DeviceRegistry& registry, RunLog& log)
        : ForwardingWindowSystem(inner), registry_(registry), log_(log) {}

    BOOL GetMessageW(MSG* message, HWND window, UINT lowest, UINT highest) override;
    int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) override;

  private:
    void Store();

    DeviceRegistry& registry_;
    RunLog& log_;
    std::uint64_t tried_ = 0;  // changes of the registry that there were when it was stored last
};

}  // namespace platform
