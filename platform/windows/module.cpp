// The one function that the module exports.

#include "platform/display_windows.h"
#include "platform/windows/qt_windows.h"

extern "C" __attribute__((visibility("default"))) platform::DisplayWindows* FennelbrightMakeWindows(
    const platform::DisplayNeeds* needs) {
    return new platform::windows::QtWindows(*needs);
}
