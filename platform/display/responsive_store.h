#pragma once

#include <chrono>

#include "platform/display/window_module.h"
#include "platform/seam/forwarding_store.h"

namespace platform {

// A store that lets the windows answer the desktop now and then while the program works on it. It
// looks at the clock before the operations of which long work consists.
class ResponsiveStore : public ForwardingStore {
  public:
    // Both stay the caller's.
    ResponsiveStore(DeviceStore& inner, DisplayWindowSystem& windows)
        : ForwardingStore(inner), windows_(windows) {}

    HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) override;
    BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) override;
    BOOL DeleteFileW(const WCHAR* path) override;
    BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) override;

  private:
    void ServeDesktopNowAndThen();

    DisplayWindowSystem& windows_;
    std::chrono::steady_clock::time_point served_;
};

}  // namespace platform
