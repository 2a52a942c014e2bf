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

    // Forgets windows that are gone, and shows the front window's title and button anew. A window
    // that comes to the front again has the keyboard where it was.
    void Refresh();

    // Gives the keyboard to the front window's OK button if no control of it takes keys.
    void FocusLoneOk();

    // Gives the keyboard to the first control that is shown on a dialog and takes keys.
    void OfferKeyboard(const Window& control);

    HWND Front() const { return shown_.empty() ? nullptr : shown_.back().window; }

    // The first window with an OK button on its caption; null if there is none.
    HWND Main() const;

  private:
    struct Shown {
        HWND window;
        HWND keyboard = nullptr;  // its control that had it when another window came over this one
    };

    ProgramWindow* FrontWindow() const;
    void Forget(const Window& window);
    void ReturnKeyboard(const Window& front);

    WindowTable& windows_;
    HostWindow& host_;
    std::vector<Shown> shown_;  // the front one last
    HWND refreshed_ = nullptr;  // the front one, as Refresh has shown it last
};

}  // namespace platform::qt
