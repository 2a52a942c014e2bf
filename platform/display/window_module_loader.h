#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/diagnostics/failure.h"
#include "platform/display/window_module.h"

namespace platform {

// What the windows are handed, for a device directory, whose text must outlive it, and a scale (0:
// fitting for the desktop).
WindowModuleParams WindowParamsFor(const char* device, double scale, bool isRehearsal = false);

// Loads the module of the windows, which is searched for beside the executable and in the library
// folder that belongs to it, and opens them on the display. Once in a process.
Result<std::unique_ptr<DisplayWindowSystem>> OpenDisplayWindowSystem(
    const WindowModuleParams& params);

// Opens the dialogs that ask for a device directory, with the same module. They must be gone before
// windows are opened.
Result<std::unique_ptr<DeviceDialogs>> OpenDeviceDialogs(double scale);

// Shows a page of help, HTML, at the place `place` of it until its user closes the window.
Status ShowHelpPage(std::string_view page, const std::string& place, double scale);

}  // namespace platform
