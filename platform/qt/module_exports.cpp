// The functions that the module exports.

#include "platform/display/window_module.h"
#include "platform/qt/desktop/device_dialogs.h"
#include "platform/qt/desktop/help_window.h"
#include "platform/qt/desktop/toolkit_start.h"
#include "platform/qt/qt_window_system.h"

extern "C" __attribute__((visibility("default"))) platform::DisplayWindowSystem*
FennelbrightMakeWindows(const platform::WindowModuleParams* params) {
    auto application = platform::qt::StartToolkit(params->scale);
    return application == nullptr
               ? nullptr
               : new platform::qt::QtWindowSystem(*params, std::move(application));
}

extern "C" __attribute__((visibility("default"))) platform::DeviceDialogs*
FennelbrightMakeDeviceDialogs(double scale) {
    auto application = platform::qt::StartToolkit(scale);
    return application == nullptr ? nullptr
                                  : new platform::qt::ToolkitDialogs(std::move(application));
}

extern "C" __attribute__((visibility("default"))) bool FennelbrightShowHelpPage(
    const platform::HelpPageParams* params) {
    const auto application = platform::qt::StartToolkit(params->scale);
    if (application == nullptr) {
        return false;
    }
    const QByteArrayView page(params->page.data(), static_cast<qsizetype>(params->page.size()));
    platform::qt::HelpWindow window(platform::qt::PageText(page), QString::fromUtf8(params->place));
    window.show();
    QApplication::setQuitOnLastWindowClosed(true);
    QApplication::exec();
    return true;
}
