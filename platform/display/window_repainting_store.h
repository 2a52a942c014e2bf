#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include "platform/seam/forwarding_store.h"

namespace platform {

// A store that lets the windows answer the desktop now and then while the program works on it. It
// looks at the clock before each operation on a file, of which long work consists.
class WindowRepaintingStore : public ForwardingStore {
  public:
    // `inner` stays the caller's. `serveDesktop` answers the desktop.
    WindowRepaintingStore(DeviceStore& inner, std::function<void()> serveDesktop)
        : ForwardingStore(inner), serveDesktop_(std::move(serveDesktop)) {}

  protected:
    DeviceFiles& files() override;

  private:
    std::function<void()> serveDesktop_;
    std::chrono::steady_clock::time_point served_;
};

}  // namespace platform
