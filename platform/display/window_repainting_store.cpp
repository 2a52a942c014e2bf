#include "platform/display/window_repainting_store.h"

namespace platform {

namespace {

constexpr std::chrono::milliseconds kPatience{100};

}  // namespace

DeviceFiles& WindowRepaintingStore::files() {
    const auto now = std::chrono::steady_clock::now();
    if (now - served_ >= kPatience) {
        serveDesktop_();
        served_ = std::chrono::steady_clock::now();
    }
    return ForwardingStore::files();
}

}  // namespace platform
