#pragma once

#include "core/window_operations.h"

// The folder browser: a dialog with a tree of the device's folders that fills a path box. It runs
// in the program's one message loop until OK, which puts the selected folder's path into the box,
// or Cancel. Only one is open at a time: opening another closes it.
class CBrowseDialog {
  public:
    // Opens the dialog for `pathBox` and returns at once; the object may be destroyed then. A
    // dialog that cannot be made is reported in a box.
    void OpenBrowseDialog(HWND parent, HWND pathBox);

  private:
    HWND dialog_ = nullptr;
    HWND pathBox_ = nullptr;
};

// Closes the dialog as Cancel does, if it is open.
void CloseBrowseDialog();

// The dialog's procedure.
LRESULT BrowseDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
