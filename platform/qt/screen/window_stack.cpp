#include "platform/qt/screen/window_stack.h"

#include <algorithm>

#include "platform/qt/screen/host_window.h"

namespace platform::qt {

bool WindowStack::IsTopLevel(const Window& window) const {
    const auto* const own = dynamic_cast<const ProgramWindow*>(&window);
    return own != nullptr && own->IsTopLevel();
}

void WindowStack::Raise(const Window& window) {
    std::erase(shown_, window.handle());
    shown_.push_back(window.handle());
    Refresh();
    window.widget().setFocus(Qt::OtherFocusReason);
}

void WindowStack::Hide(const Window& window) {
    std::erase(shown_, window.handle());
    Refresh();
}

// What stands behind the front window must not be reached by the keyboard either.
void WindowStack::Refresh() {
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

HWND WindowStack::Main() const {
    for (const HWND shown : shown_) {
        const auto* const window = dynamic_cast<const ProgramWindow*>(windows_.Find(shown));
        if (window != nullptr && window->HasOk()) {
            return shown;
        }
    }
    return nullptr;
}

ProgramWindow* WindowStack::FrontWindow() const {
    return dynamic_cast<ProgramWindow*>(windows_.Find(Front()));
}

}  // namespace platform::qt
