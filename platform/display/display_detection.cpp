#include "platform/display/display_detection.h"

#include <netdb.h>
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

namespace platform {

namespace {

constexpr int kFirstPort = 6000;

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

}  // namespace

bool DisplayIsThere() {
    const std::string kinds = Environment("QT_QPA_PLATFORM");
    const std::string_view chosen = std::string_view(kinds).substr(0, kinds.find_first_of(":;"));
    if (chosen == "offscreen" || chosen.starts_with("minimal")) {
        return false;  // they cannot be seen
    }
    if (!chosen.empty() && chosen != "xcb" && !chosen.starts_with("wayland")) {
        return true;
    }
    return XDisplayIsThere(Environment("DISPLAY")) || WaylandIsThere();
}

}  // namespace platform
