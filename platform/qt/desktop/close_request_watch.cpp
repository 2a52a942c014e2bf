#include "platform/qt/desktop/close_request_watch.h"

#include <xcb/xcb.h>

#include <QApplication>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/qt/desktop/toolkit_start.h"

namespace platform::qt {

namespace {

constexpr std::uint8_t kSentEvent = 0x80;  // set beside the type of an event that a client sent

xcb_atom_t Atom(xcb_connection_t* display, std::string_view name) {
    const auto length = static_cast<std::uint16_t>(name.size());
    const std::unique_ptr<xcb_intern_atom_reply_t, void (*)(void*)> reply(
        xcb_intern_atom_reply(display, xcb_intern_atom(display, 0, length, name.data()), nullptr),
        std::free);
    return reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
}

}  // namespace

CloseRequestWatch::CloseRequestWatch(const QWidget& window, std::function<void()> asked)
    : window_(window), asked_(std::move(asked)) {
    if (xcb_connection_t* const display = XConnection()) {
        protocols_ = Atom(display, "WM_PROTOCOLS");
        deletion_ = Atom(display, "WM_DELETE_WINDOW");
        qApp->installNativeEventFilter(this);
    }
}

CloseRequestWatch::~CloseRequestWatch() {
    qApp->removeNativeEventFilter(this);
}

bool CloseRequestWatch::nativeEventFilter(const QByteArray& type, void* message,
                                          qintptr* /*result*/) {
    if (type != "xcb_generic_event_t" || QApplication::activeModalWidget() == nullptr) {
        return false;
    }
    const auto* const event = static_cast<const xcb_client_message_event_t*>(message);
    const bool asksToClose = (event->response_type & ~kSentEvent) == XCB_CLIENT_MESSAGE &&
                             event->type == protocols_ && event->data.data32[0] == deletion_ &&
                             event->window == window_.internalWinId();
    if (asksToClose) {
        asked_();
    }
    return asksToClose;
}

}  // namespace platform::qt
