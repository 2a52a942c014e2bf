#pragma once

#include "core/window_operations.h"

// The windows that contain the pages, each reached through its pointer in core/application.h: the
// main window, in it the menu bar and the tab control, and in that the display window. A failure is
// reported in a box; the handle is null then, as it is before Create.

class WindowObject {
  public:
    HWND Window() const { return window_; }

  protected:
    HWND window_ = nullptr;
};

class CMainWindow : public WindowObject {
  public:
    // Makes the window and its menu bar, which g_MenuBar keeps, and shows it. A failure of the
    // window itself is not reported.
    void Create();
    void Destroy();
};

class CMenuBar : public WindowObject {
  public:
    // Makes the bar from the menu resource and shortens the main window to make room for it.
    void Create();

    // Shortens a top-level window by the height of the bar. Without a bar, or if a size is not
    // available, the window keeps its own size.
    void FitWindow(HWND window) const;

    // Forgets the bar, which is destroyed with the main window.
    void Destroy();
};

class CTabBar : public WindowObject {
  public:
    // Makes the tab control, which fills the main window, with a tab for each screen.
    void Create();
    void Destroy();
};

class CDisplayWindow : public WindowObject {
  public:
    // Makes the window with all controls of the screens. It fills the tab control's display area
    // and scrolls vertically.
    void Create();
    void Destroy();
};
