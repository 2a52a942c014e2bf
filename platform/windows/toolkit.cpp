#include "platform/windows/toolkit.h"

#include <xcb/xcb.h>

#include <QDir>
#include <QLibraryInfo>
#include <algorithm>
#include <optional>

#include "platform/windows/look.h"

namespace platform::windows {

namespace {

constexpr int kUnknownDesktopScale = 2;
constexpr int kLargestScale = 5;

// A connection to the X desktop that lasts until the toolkit has its own: a server may start anew
// when its last user leaves.
class XDesktop {
  public:
    XDesktop() : connection_(xcb_connect(nullptr, nullptr)) {}
    ~XDesktop() { xcb_disconnect(connection_); }
    XDesktop(const XDesktop&) = delete;
    XDesktop& operator=(const XDesktop&) = delete;

    // In pixels; 0 where there is no desktop, or none that lets this user in.
    int Height() const {
        return xcb_connection_has_error(connection_) != 0
                   ? 0
                   : xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->height_in_pixels;
    }

  private:
    xcb_connection_t* connection_;
};

bool HasWayland() {
    const QDir plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms");
    return qEnvironmentVariableIsSet("WAYLAND_DISPLAY") &&
           !plugins.entryList({QStringLiteral("libqwayland*")}).isEmpty();
}

// Leaves a sixth of the desktop for the window's frame and the desktop's own bars.
double FittingScale(int desktopHeight) {
    return desktopHeight == 0 ? kUnknownDesktopScale
                              : std::clamp(desktopHeight * 5 / 6 / kScreenHeight, 1, kLargestScale);
}

}  // namespace

// Geometry and type are scaled by the toolkit itself, so that text is sharp at every scale and a
// measure of the handheld is a measure of the toolkit.
std::unique_ptr<QApplication> StartToolkit(double scale) {
    const QByteArray kind = qgetenv("QT_QPA_PLATFORM").split(':').front();
    const bool forX = kind.isEmpty() || kind == "xcb";
    const bool forWayland = kind.isEmpty() || kind.startsWith("wayland");
    std::optional<XDesktop> desktop;
    const int height = forX ? desktop.emplace().Height() : 0;
    if ((forX || forWayland) && height == 0 && !(forWayland && HasWayland())) {
        return nullptr;
    }
    static int count = 1;
    static char name[] = "fennelbright";
    static char* words[] = {name, nullptr};
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale > 0 ? scale : FittingScale(height)));
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
