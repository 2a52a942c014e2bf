// The functions that the module exports.

#include "platform/display/window_module.h"
#include "platform/qt/desktop/device_dialogs.h"
#include "platform/qt/desktop/help_window.h"
#include "platform/qt/desktop/toolkit_start.h"
#include "platform/qt/qt_window_system.h"

extern "C" __attribute__((visibility("default"))) platform::DisplayWindows* FennelbrightMakeWindows(
    const platform::DisplayNeeds* needs) {
    auto application = platform::qt::StartToolkit(needs->scale);
    return application == nullptr ? nullptr
                                  : new platform::qt::QtWindows(*needs, std::move(application));
}

extern "C" __attribute__((visibility("default"))) platform::DeviceDialogs*
FennelbrightMakeDeviceDialogs(double scale) {
    auto application = platform::qt::StartToolkit(scale);
    return application == nullptr ? nullptr
                                  : new platform::qt::ToolkitDialogs(std::move(application));
}

extern "C" __attribute__((visibility("default"))) bool FennelbrightShowHelpPage(
    const platform::HelpPageNeeds* needs) {
    const auto application = platform::qt::StartToolkit(needs->scale);
    if (application == nullptr) {
        return false;
    }
    const QByteArrayView page(needs->page.data(), static_cast<qsizetype>(needs->page.size()));
    platform::qt::HelpWindow window(platform::qt::PageText(page), QString::fromUtf8(needs->place));
    window.show();
    QApplication::setQuitOnLastWindowClosed(true);
    QApplication::exec();
    return true;
}
