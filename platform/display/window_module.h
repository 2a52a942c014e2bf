#pragma once

#include <string>
#include <string_view>

#include "platform/seam/window_system.h"
#include "shell/resources.h"

namespace platform {

// The window system on the desktop's display.
class DisplayWindowSystem : public WindowSystem {
  public:
    // Answers the desktop while the program works: what has to be painted is painted. Takes no
    // input and runs nothing of the program.
    virtual void ServeDesktop() = 0;

    // Asks the user whether what has failed, in words, UTF-8, is to be tried again. False without a
    // box once a signal has asked the run to end, or where no box can be seen.
    virtual bool WantsToTryAgain(const std::string& failure) = 0;
};

// What the module of the windows is handed. The functions must outlive the window system, the text
// only the call.
struct WindowModuleParams {
    const char* title;  // of the window on the desktop, UTF-8
    bool isRehearsal;   // the windows show that nothing is changed
    double scale;       // desktop pixels for a pixel of the handheld; 0: fitting for the desktop
    const MenuResource* (*findMenu)(UINT id);
    const IconResource* (*findIcon)(UINT id);
    // Writes what a box says that cannot be seen any more, and returns its answer.
    int (*answerUnseen)(const WCHAR* text, const WCHAR* caption, UINT type);
};

// The function of the module for the program's windows: makes the window system, which becomes the
// caller's. Null where no display can be opened. Once in a process.
using MakeDisplayWindowSystem = DisplayWindowSystem*(const WindowModuleParams* params);
inline constexpr char kMakeDisplayWindowSystem[] = "FennelbrightMakeWindows";
inline constexpr char kWindowModule[] = "fennelbright-windows.so";

// What is asked before there are windows of the program, where no device directory was named.
class DeviceDialogs {
  public:
    DeviceDialogs() = default;
    virtual ~DeviceDialogs() = default;
    DeviceDialogs(const DeviceDialogs&) = delete;
    DeviceDialogs& operator=(const DeviceDialogs&) = delete;

    // Lets the user choose a folder, which need not exist. Returns its path; empty when the user
    // cancels.
    virtual std::string ChooseFolder() = 0;

    // Shows a text, UTF-8, until the user has read it.
    virtual void ShowText(const std::string& text) = 0;

    // Whether the user says yes to a question.
    virtual bool Confirm(const std::string& question) = 0;
};

// The function of the module for them. They become the caller's and must be gone before a window
// system is made. Null where no display can be opened. `scale` is as above.
using MakeDeviceDialogs = DeviceDialogs*(double scale);
inline constexpr char kMakeDeviceDialogs[] = "FennelbrightMakeDeviceDialogs";

// A page of help in a window of its own on the desktop, as whole as its text, at the place `place`.
struct HelpPageParams {
    std::string_view page;  // HTML
    const char* place;      // UTF-8
    double scale;           // as above
};

// The function of the module for it: shows the page until its user closes the window. False where
// no display can be opened. Once in a process, and in none that has made a window system.
using ShowHelpPageFunction = bool(const HelpPageParams* params);
inline constexpr char kShowHelpPage[] = "FennelbrightShowHelpPage";

}  // namespace platform
