#include "platform/windows/toolkit.h"

#include <xcb/xcb.h>

#include <algorithm>

#include "platform/windows/look.h"

namespace platform::windows {

namespace {

constexpr int kUnknownDesktopScale = 2;
constexpr int kLargestScale = 5;

// The height of the desktop in pixels; 0 when it is not known. The toolkit must know its scale
// before it can be asked for this.
int DesktopHeight() {
    const QByteArray choice = qgetenv("QT_QPA_PLATFORM");
    if (!choice.isEmpty() && !choice.startsWith("xcb")) {
        return 0;
    }
    xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
    int height = 0;
    if (xcb_connection_has_error(connection) == 0) {
        height = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->height_in_pixels;
    }
    xcb_disconnect(connection);
    return height;
}

// Leaves a sixth of the desktop for the window's frame and the desktop's own bars.
double FittingScale() {
    const int height = DesktopHeight();
    return height == 0 ? kUnknownDesktopScale
                       : std::clamp(height * 5 / 6 / kScreenHeight, 1, kLargestScale);
}

}  // namespace

// Geometry and type are scaled by the toolkit itself, so that text is sharp at every scale and a
// measure of the handheld is a measure of the toolkit.
std::unique_ptr<QApplication> StartToolkit(double scale) {
    static int count = 1;
    static char name[] = "fennelbright";
    static char* words[] = {name, nullptr};
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale > 0 ? scale : FittingScale()));
    qputenv("QT_FONT_DPI", "96");
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QGuiApplication::setDesktopSettingsAware(false);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    auto application = std::make_unique<QApplication>(count, words);
    ApplyLook(*application);
    return application;
}

}  // namespace platform::windows
