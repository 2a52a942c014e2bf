#pragma once

#include "core/window_operations.h"

// The windows that the pages stand in, each reached through its pointer in core/application.h: the
// main window, below it menu bar and tab control, and below that the display window. A failure is
// told in a box, and the handle is null then, as it is before Create.

class WindowObject {
  public:
    HWND Window() const { return window_; }

  protected:
    HWND window_ = nullptr;
};

class CMainWindow : public WindowObject {
  public:
    // Makes the window and, on g_MenuBar, its bar, and shows it. A failure of the window alone is
    // not told.
    void Create();
    void Destroy();
};

class CMenuBar : public WindowObject {
  public:
    // Makes the bar from the menu resource and shortens the main window to make room for it.
    void Create();

    // Shortens a top-level window by the height of the bar. Without a bar, and when a size is not
    // to be had, the window keeps its own.
    void FitWindow(HWND window) const;

    // The bar goes with the main window; this only forgets it.
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
    // Makes the window that all controls of the screens stand in. It fills the tab control's
    // display area and scrolls up and down.
    void Create();
    void Destroy();
};
