#include "platform/qt/desktop/toolkit_start.h"

#include <xcb/xcb.h>

#include <QDir>
#include <QLibraryInfo>
#include <QSize>
#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>

#include "platform/qt/base/handheld_style.h"
#include "platform/qt/controls/accessible_controls.h"
#include "platform/qt/desktop/accessible_places.h"

namespace platform::qt {

namespace {

constexpr int kUnknownDesktopScale = 2;
constexpr double kLargestScale = 5;

// A connection to the X desktop that lasts until the toolkit has its own: a server may start anew
// when its last user leaves.
class XDesktop {
  public:
    XDesktop() : connection_(xcb_connect(nullptr, &screen_)) {}
    ~XDesktop() { xcb_disconnect(connection_); }
    XDesktop(const XDesktop&) = delete;
    XDesktop& operator=(const XDesktop&) = delete;

    // In pixels; empty where there is no desktop, or none that lets this user in.
    QSize Size() const {
        if (xcb_connection_has_error(connection_) != 0) {
            return {};
        }
        auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
        for (int index = 0; index < screen_; ++index) {
            xcb_screen_next(&screens);
        }
        return {screens.data->width_in_pixels, screens.data->height_in_pixels};
    }

  private:
    int screen_ = 0;
    xcb_connection_t* connection_;
};

bool CanOpen(const QByteArray& kind, QSize xDesktop) {
    if (kind == "xcb") {
        return !xDesktop.isEmpty();
    }
    return !kind.startsWith("wayland") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

// The first kind of display that can be opened of those that the user has chosen, or of all that
// desktops have; empty when there is none.
QByteArray OpenableKind(QSize xDesktop) {
    const QByteArray chosen = qgetenv("QT_QPA_PLATFORM");
    const QDir plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms");
    for (const QByteArray& each : (chosen.isEmpty() ? "xcb;wayland" : chosen).split(';')) {
        const QByteArray kind = each.split(':').front().toLower();
        const bool isName = std::all_of(kind.begin(), kind.end(), [](char letter) {
            return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '-';
        });
        const QString plugin = QStringLiteral("libq") + QString::fromUtf8(kind);
        if (isName && CanOpen(kind, xDesktop) &&
            !plugins.entryList({plugin + ".so", plugin + "-*.so"}).isEmpty()) {
            return kind + each.mid(kind.size());
        }
    }
    return {};
}

// The largest scale at which the screen is as large as `room`.
double LargestScaleIn(QSizeF room) {
    return std::min(room.width() / kScreenWidth, room.height() / kScreenHeight);
}

// The scale that is wished for, or as much of it as the desktop has room for; 0: the largest whole
// number that leaves a tenth of the desktop to its own bars and the frame.
double ScaleFor(double wished, QSize desktop) {
    if (desktop.isEmpty()) {
        return wished > 0 ? wished : kUnknownDesktopScale;
    }
    if (wished <= 0) {
        return std::clamp(std::floor(LargestScaleIn(QSizeF(desktop) * 0.9)), 1.0, kLargestScale);
    }
    return std::min(wished, std::max(1.0, LargestScaleIn(desktop)));
}

// What the toolkit notes while it starts, such as missing folders of the session, means nothing to
// the program's user; only the reason of its own end does.
void PassOnFatal(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "fennelbright: %s\n", qUtf8Printable(text));
    }
}

}  // namespace

// Geometry and type are scaled by the toolkit itself, so that text is sharp at every scale and a
// measure of the handheld is a measure of the toolkit.
std::unique_ptr<QApplication> StartToolkit(double scale) {
    const XDesktop desktop;
    const QByteArray kind = OpenableKind(desktop.Size());
    if (kind.isEmpty()) {
        return nullptr;
    }
    static int count = 1;
    static char name[] = "fennelbright";
    static char* words[] = {name, nullptr};
    const double factor = ScaleFor(scale, kind == "xcb" ? desktop.Size() : QSize());
    qputenv("QT_QPA_PLATFORM", kind);
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    qputenv("QT_SCALE_FACTOR", QByteArray::number(factor));
    qunsetenv("QT_SCREEN_SCALE_FACTORS");
    qputenv("QT_FONT_DPI", "96");
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QGuiApplication::setDesktopSettingsAware(false);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    const QtMessageHandler before = qInstallMessageHandler(PassOnFatal);
    auto application = std::make_unique<QApplication>(count, words);
    qInstallMessageHandler(before);
    ApplyHandheldStyle(*application);
    DescribeControls();
    new AccessiblePlaces(application.get());  // the application's own
    return application;
}

xcb_connection_t* XConnection() {
    const auto* const x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    const bool used = x11 != nullptr && QGuiApplication::platformName() == QLatin1String("xcb");
    return used ? x11->connection() : nullptr;
}

bool DisplayIsLost() {
    xcb_connection_t* const connection = XConnection();
    return connection != nullptr && xcb_connection_has_error(connection) != 0;
}

}  // namespace platform::qt
