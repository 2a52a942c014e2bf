// Asks a window of the display to close, as a window manager does: close_request WINDOW

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

xcb_atom_t AtomOf(xcb_connection_t* connection, const char* name) {
    const auto size = static_cast<std::uint16_t>(std::strlen(name));
    auto* const reply =
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, size, name), nullptr);
    const xcb_atom_t atom = reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
    std::free(reply);
    return atom;
}

}  // namespace

int main(int count, char** words) {
    if (count != 2) {
        return 64;
    }
    xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
    xcb_client_message_event_t request{};
    request.response_type = XCB_CLIENT_MESSAGE;
    request.format = 32;
    request.window = static_cast<xcb_window_t>(std::strtoul(words[1], nullptr, 0));
    request.type = AtomOf(connection, "WM_PROTOCOLS");
    request.data.data32[0] = AtomOf(connection, "WM_DELETE_WINDOW");
    xcb_send_event(connection, 0, request.window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&request));
    // The display may forget what is still unread when its client leaves: an answer says it is
    // read.
    AtomOf(connection, "WM_PROTOCOLS");
    xcb_disconnect(connection);
}
