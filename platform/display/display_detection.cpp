#include "platform/display/display_detection.h"

#include <netdb.h>
#include <strings.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "platform/io/descriptor.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

constexpr int kFirstPort = 6000;
constexpr const char* kDesktopKindsAlone =
    "of the toolkit's kinds of display it may name xcb and wayland alone";

std::string Environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

// A name that begins with a zero byte is one of the kernel's own name space.
bool CanConnect(std::string_view name) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (name.empty() || name.size() >= sizeof address.sun_path) {
        return false;
    }
    std::memcpy(address.sun_path, name.data(), name.size());
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() +
                                               (name.front() == 0 ? 0 : 1));
    const Descriptor connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    return connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), length) == 0;
}

bool CanConnectTo(const std::string& host, int port) {
    addrinfo wanted = {};
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &wanted, &found) != 0) {
        return false;
    }
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> all(found, freeaddrinfo);
    for (const addrinfo* each = all.get(); each != nullptr; each = each->ai_next) {
        const Descriptor connection(socket(each->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
        if (connect(connection.get(), each->ai_addr, each->ai_addrlen) == 0) {
            return true;
        }
    }
    return false;
}

// A display is named [HOST]:NUMBER[.SCREEN].
bool XDisplayIsThere(const std::string& display) {
    const std::size_t colon = display.rfind(':');
    if (colon == std::string::npos) {
        return false;
    }
    int number = -1;
    std::from_chars(display.data() + colon + 1, display.data() + display.size(), number);
    if (number < 0) {
        return false;
    }
    const std::string host = display.substr(0, colon);
    if (!host.empty() && host != "unix") {
        return CanConnectTo(host, kFirstPort + number);
    }
    const std::string path = "/tmp/.X11-unix/X" + std::to_string(number);
    return CanConnect(path) || CanConnect(std::string(1, '\0') + path);
}

bool WaylandIsThere() {
    const std::string name = Environment("WAYLAND_DISPLAY");
    if (name.empty()) {
        return false;
    }
    return CanConnect(name.front() == '/' ? name : Environment("XDG_RUNTIME_DIR") + '/' + name);
}

// A kind may have options after a colon, and stand in capitals.
bool IsDesktopKind(std::string_view kind) {
    const std::string_view name = kind.substr(0, kind.find(':'));
    const auto begins = [name](std::string_view word) {
        return strncasecmp(name.data(), word.data(), word.size()) == 0;
    };
    return (name.size() == 3 && begins("xcb")) || (name.size() >= 7 && begins("wayland"));
}

bool AreDesktopKinds(std::string_view kinds) {
    const std::size_t end = kinds.find(';');
    return IsDesktopKind(kinds.substr(0, end)) &&
           (end == std::string_view::npos || AreDesktopKinds(kinds.substr(end + 1)));
}

}  // namespace

Status CheckDisplay() {
    const std::string kinds = Environment("QT_QPA_PLATFORM");
    if (!kinds.empty() && !AreDesktopKinds(kinds)) {
        return FailOf({kOpenWindows, {}, 0, kDesktopKindsAlone},
                      "QT_QPA_PLATFORM=" + ReadableBytes(kinds));
    }
    if (XDisplayIsThere(Environment("DISPLAY")) || WaylandIsThere()) {
        return {};
    }
    return FailBecause(kOpenWindows,
                       "neither DISPLAY nor WAYLAND_DISPLAY leads to a display; the command line "
                       "\"silent\" needs none");
}

}  // namespace platform
