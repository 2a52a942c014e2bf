#include "platform/boxes_on_demand.h"

namespace platform {

int BoxesOnDemand::MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) {
    if (!tried_ && DisplayIsThere()) {
        std::string reason;
        windows_ = OpenDisplayWindows(needs_, reason);
    }
    tried_ = true;
    return windows_ != nullptr ? windows_->MessageBoxW(owner, text, caption, type)
                               : ConsoleWindows::MessageBoxW(owner, text, caption, type);
}

}  // namespace platform
