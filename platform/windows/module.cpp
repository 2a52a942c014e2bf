// The functions that the module exports.

#include "platform/display_windows.h"
#include "platform/windows/device_dialogs.h"
#include "platform/windows/help_window.h"
#include "platform/windows/qt_windows.h"
#include "platform/windows/toolkit.h"

extern "C" __attribute__((visibility("default"))) platform::DisplayWindows* FennelbrightMakeWindows(
    const platform::DisplayNeeds* needs) {
    auto application = platform::windows::StartToolkit(needs->scale);
    return application == nullptr
               ? nullptr
               : new platform::windows::QtWindows(*needs, std::move(application));
}

extern "C" __attribute__((visibility("default"))) platform::DeviceDialogs*
FennelbrightMakeDeviceDialogs(double scale) {
    auto application = platform::windows::StartToolkit(scale);
    return application == nullptr ? nullptr
                                  : new platform::windows::ToolkitDialogs(std::move(application));
}

extern "C" __attribute__((visibility("default"))) bool FennelbrightShowHelpPage(
    const platform::HelpPageNeeds* needs) {
    const auto application = platform::windows::StartToolkit(needs->scale);
    if (application == nullptr) {
        return false;
    }
    const QByteArrayView page(needs->page.data(), static_cast<qsizetype>(needs->page.size()));
    platform::windows::HelpWindow window(platform::windows::PageText(page),
                                         QString::fromUtf8(needs->place));
    window.show();
    QApplication::setQuitOnLastWindowClosed(true);
    QApplication::exec();
    return true;
}
