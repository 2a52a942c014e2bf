#pragma once

#include <vector>

#include "platform/qt/base/window_table.h"
#include "platform/qt/screen/program_window.h"

namespace platform::qt {

// The top-level windows that are shown, one over the other. The keyboard, the caption bar and its
// OK button belong to the one in front.
class WindowStack {
  public:
    WindowStack(WindowTable& windows, HostWindow& host) : windows_(windows), host_(host) {}

    bool IsTopLevel(const Window& window) const;

    void Raise(const Window& window);
    void Hide(const Window& window);

    // Forgets windows that are gone, and shows the front window's title and button anew.
    void Refresh();

    HWND Front() const { return shown_.empty() ? nullptr : shown_.back(); }

    // The first window with an OK button on its caption; null if there is none.
    HWND Main() const;

  private:
    ProgramWindow* FrontWindow() const;

    WindowTable& windows_;
    HostWindow& host_;
    std::vector<HWND> shown_;  // the front one last
};

}  // namespace platform::qt
