#include "platform/display/responsive_store.h"

namespace platform {

namespace {

constexpr std::chrono::milliseconds kPatience{100};

}  // namespace

HANDLE ResponsiveStore::FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) {
    ServeDesktopNowAndThen();
    return ForwardingStore::FindFirstFileW(pattern, data);
}

BOOL ResponsiveStore::FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) {
    ServeDesktopNowAndThen();
    return ForwardingStore::FindNextFileW(find, data);
}

BOOL ResponsiveStore::DeleteFileW(const WCHAR* path) {
    ServeDesktopNowAndThen();
    return ForwardingStore::DeleteFileW(path);
}

BOOL ResponsiveStore::MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) {
    ServeDesktopNowAndThen();
    return ForwardingStore::MoveFileW(oldPath, newPath);
}

void ResponsiveStore::ServeDesktopNowAndThen() {
    const auto now = std::chrono::steady_clock::now();
    if (now - served_ >= kPatience) {
        windows_.ServeDesktop();
        served_ = std::chrono::steady_clock::now();
    }
}

}  // namespace platform
