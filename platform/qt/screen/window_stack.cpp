#include "platform/qt/screen/window_stack.h"

#include <algorithm>
#include <utility>

#include "platform/qt/screen/host_window.h"

namespace platform::qt {

namespace {

bool TakesKeys(const Window* window) {
    return window->widget().focusPolicy() != Qt::NoFocus;
}

}  // namespace

bool WindowStack::IsTopLevel(const Window& window) const {
    const auto* const own = dynamic_cast<const ProgramWindow*>(&window);
    return own != nullptr && own->IsTopLevel();
}

void WindowStack::Raise(const Window& window) {
    if (const QWidget* const keyboard = host_.focusWidget();
        keyboard != nullptr && !shown_.empty()) {
        shown_.back().keyboard = HandleOf(*keyboard);
    }
    Forget(window);
    shown_.push_back({window.handle()});
    Refresh();
    window.widget().setFocus(Qt::OtherFocusReason);
}

void WindowStack::Hide(const Window& window) {
    Forget(window);
    Refresh();
}

void WindowStack::Forget(const Window& window) {
    std::erase_if(shown_, [&](const Shown& shown) { return shown.window == window.handle(); });
}

// What is under the front window must not be reached by the keyboard either.
void WindowStack::Refresh() {
    std::erase_if(shown_,
                  [this](const Shown& shown) { return windows_.Find(shown.window) == nullptr; });
    const ProgramWindow* const front = FrontWindow();
    for (const Shown& shown : shown_) {
        const Window* const window = windows_.Find(shown.window);
        window->widget().setEnabled(window == front);
    }
    if (front != nullptr) {
        front->widget().raise();
        host_.RaiseMenuBar();
    }
    host_.SetCaption(front == nullptr ? QString() : front->Text(),
                     front != nullptr && front->HasOk());
    if (std::exchange(refreshed_, Front()) != Front() && front != nullptr) {
        ReturnKeyboard(*front);
    }
}

void WindowStack::ReturnKeyboard(const Window& front) {
    const Window* const control = windows_.Find(shown_.back().keyboard);
    const bool isThere = control != nullptr && control->widget().isVisible();
    (isThere ? *control : front).widget().setFocus(Qt::OtherFocusReason);
}

void WindowStack::FocusLoneOk() {
    const ProgramWindow* const front = FrontWindow();
    if (front != nullptr && front->HasOk() &&
        std::ranges::none_of(windows_.ChildrenOf(Front()), TakesKeys)) {
        host_.FocusOk();
    }
}

void WindowStack::OfferKeyboard(const Window& control) {
    const ProgramWindow* const front = FrontWindow();
    if (front != nullptr && front->IsDialog() && control.parent() == Front() &&
        host_.focusWidget() == &front->widget() && TakesKeys(&control)) {
        control.widget().setFocus(Qt::OtherFocusReason);
    }
}

HWND WindowStack::Main() const {
    for (const Shown& shown : shown_) {
        const auto* const window = dynamic_cast<const ProgramWindow*>(windows_.Find(shown.window));
        if (window != nullptr && window->HasOk()) {
            return shown.window;
        }
    }
    return nullptr;
}

ProgramWindow* WindowStack::FrontWindow() const {
    return dynamic_cast<ProgramWindow*>(windows_.Find(Front()));
}

}  // namespace platform::qt
