#include "platform/qt/base/window_table.h"

#include <iterator>

namespace platform::qt {

namespace {

std::uintptr_t NumberOf(HWND handle) {
    return reinterpret_cast<std::uintptr_t>(handle);
}

}  // namespace

// The youngest first: a child is younger than its parent, whose widget would take it along.
WindowTable::~WindowTable() {
    while (!windows_.empty()) {
        windows_.erase(std::prev(windows_.end()));
    }
}

HWND WindowTable::NewHandle() {
    return reinterpret_cast<HWND>(++last_);  // NOLINT(performance-no-int-to-ptr)
}

void WindowTable::Add(std::unique_ptr<Window> window) {
    const std::uintptr_t number = NumberOf(window->handle());
    windows_.emplace(number, std::move(window));
}

Window* WindowTable::Find(HWND handle) const {
    const auto found = windows_.find(NumberOf(handle));
    return found == windows_.end() ? nullptr : found->second.get();
}

std::vector<Window*> WindowTable::ChildrenOf(HWND parent) const {
    std::vector<Window*> children;
    for (const auto& [number, window] : windows_) {
        if (window->parent() == parent) {
            children.push_back(window.get());
        }
    }
    return children;
}

bool WindowTable::Destroy(HWND handle) {
    const auto found = windows_.find(NumberOf(handle));
    if (found == windows_.end()) {
        return false;
    }
    for (const Window* const child : ChildrenOf(handle)) {
        Destroy(child->handle());
    }
    windows_.erase(found);
    return true;
}

LRESULT WindowTable::Send(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) const {
    Window* const window = Find(handle);
    return window == nullptr ? 0 : window->Receive(message, wParam, lParam);
}

}  // namespace platform::qt
