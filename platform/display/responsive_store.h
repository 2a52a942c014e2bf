#pragma once

#include <chrono>

#include "platform/display/window_module.h"
#include "platform/seam/forwarding_store.h"

namespace platform {

// A store that lets the windows answer the desktop now and then while the program works on it. It
// looks at the clock before each operation on a file, of which long work consists.
class ResponsiveStore : public ForwardingStore {
  public:
    // Both stay the caller's.
    ResponsiveStore(DeviceStore& inner, DisplayWindowSystem& windows)
        : ForwardingStore(inner), windows_(windows) {}

  protected:
    DeviceFiles& files() override;

  private:
    DisplayWindowSystem& windows_;
    std::chrono::steady_clock::time_point served_;
};

}  // namespace platform
