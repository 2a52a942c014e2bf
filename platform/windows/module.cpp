// The one function that the module exports.

#include "platform/display_windows.h"
#include "platform/windows/qt_windows.h"
#include "platform/windows/toolkit.h"

extern "C" __attribute__((visibility("default"))) platform::DisplayWindows* FennelbrightMakeWindows(
    const platform::DisplayNeeds* needs) {
    auto application = platform::windows::StartToolkit(needs->scale);
    return application == nullptr
               ? nullptr
               : new platform::windows::QtWindows(*needs, std::move(application));
}
