#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "platform/qt/base/window.h"

namespace platform::qt {

// All windows by their handles. A handle is a number that is given once and never again.
class WindowTable {
  public:
    WindowTable() = default;
    ~WindowTable();
    WindowTable(const WindowTable&) = delete;
    WindowTable& operator=(const WindowTable&) = delete;

    HWND NewHandle();
    void Add(std::unique_ptr<Window> window);

    // Null for a handle that names no window.
    Window* Find(HWND handle) const;

    // The children of a window, in the order in which they were made.
    std::vector<Window*> ChildrenOf(HWND parent) const;

    // Destroys a window and all its children, children first. False when there is none.
    bool Destroy(HWND handle);

    // Sends a message to a window; 0 when there is none. Any window may be gone afterwards.
    LRESULT Send(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) const;

  private:
    std::map<std::uintptr_t, std::unique_ptr<Window>> windows_;
    std::uintptr_t last_ = 0;
};

}  // namespace platform::qt
