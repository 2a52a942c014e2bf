#include "platform/qt/screen/window_stack.h"

#include <algorithm>

#include "platform/qt/screen/host_window.h"

namespace platform::qt {

bool FrontWindows::IsTopLevel(const Window& window) const {
    const auto* const own = dynamic_cast<const ProgramWindow*>(&window);
    return own != nullptr && own->IsTopLevel();
}

void FrontWindows::Raise(const Window& window) {
    std::erase(shown_, window.handle());
    shown_.push_back(window.handle());
    Refresh();
    window.widget().setFocus(Qt::OtherFocusReason);
}

void FrontWindows::Hide(const Window& window) {
    std::erase(shown_, window.handle());
    Refresh();
}

// What stands behind the front window must not be reached by the keyboard either.
void FrontWindows::Refresh() {
    std::erase_if(shown_, [this](HWND shown) { return windows_.Find(shown) == nullptr; });
    const ProgramWindow* const front = FrontWindow();
    for (const HWND shown : shown_) {
        const Window* const window = windows_.Find(shown);
        window->widget().setEnabled(window == front);
    }
    if (front != nullptr) {
        front->widget().raise();
        host_.RaiseMenuBar();
    }
    host_.SetCaption(front == nullptr ? QString() : front->Text(),
                     front != nullptr && front->HasOk());
}

HWND FrontWindows::Main() const {
    for (const HWND shown : shown_) {
        const auto* const window = dynamic_cast<const ProgramWindow*>(windows_.Find(shown));
        if (window != nullptr && window->HasOk()) {
            return shown;
        }
    }
    return nullptr;
}

ProgramWindow* FrontWindows::FrontWindow() const {
    return dynamic_cast<ProgramWindow*>(windows_.Find(Front()));
}

}  // namespace platform::qt
