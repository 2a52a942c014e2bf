#include "platform/display/registry_saving_windows.h"

#include <string_view>

namespace platform {

// What could not be stored is tried again when there is more of it.
void RegistrySavingWindows::Store() {
    const std::uint64_t made = registry_.ChangesOfRegistry().made;
    if (made > tried_) {
        tried_ = made;
        [[maybe_unused]] const Status stored = registry_.StoreRegistry();
    }
}

BOOL RegistrySavingWindows::GetMessageW(MSG* message, HWND window, UINT lowest, UINT highest) {
    Store();
    return ForwardingWindowSystem::GetMessageW(message, window, lowest, highest);
}

int RegistrySavingWindows::MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption,
                                       UINT type) {
    Store();
    if (std::u16string_view(caption).starts_with(u"Error")) {
        log_.CountUndone();
    }
    return ForwardingWindowSystem::MessageBoxW(owner, text, caption, type);
}

}  // namespace platform
