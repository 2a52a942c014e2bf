#include "platform/text/name_translation.h"

#include <utf8proc.h>

#include <algorithm>

#include "platform/text/reserved_names.h"
#include "platform/text/unicode.h"

namespace platform {

namespace {

bool IsAllowed(utf8proc_int32_t character) {
    constexpr std::string_view forbidden = "\\/:*?\"<>|";
    return character >= 0x20 &&
           (character >= 0x80 ||
            forbidden.find(static_cast<char>(character)) == std::string_view::npos);
}

bool IsEscape(utf8proc_int32_t character) {
    return character >= kEscapeBase && character <= kEscapeBase + 0xFF;
}

// Maps what `rest` begins with and returns how many bytes that was; 0 when it does not fit.
std::size_t MapFirst(std::string_view rest, DeviceName& device) {
    utf8proc_int32_t character = -1;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(rest.data()),
                                         static_cast<utf8proc_ssize_t>(rest.size()), &character);
    if (length > 0 && IsAllowed(character) && !IsEscape(character)) {
        bool fits = true;
        AppendUtf16(character, [&](WCHAR unit) { fits = device.Append(unit) && fits; });
        return fits ? static_cast<std::size_t>(length) : 0;
    }
    const auto byte = static_cast<unsigned char>(rest.front());
    return device.Append(static_cast<WCHAR>(kEscapeBase + byte)) ? 1 : 0;
}

bool AppendBytes(HostName& host, utf8proc_int32_t character) {
    if (IsEscape(character)) {
        return host.Append(static_cast<char>(character - kEscapeBase));
    }
    bool fits = true;
    AppendUtf8(character, [&](char byte) { fits = host.Append(byte) && fits; });
    return fits;
}

}  // namespace

DeviceName DeviceNameOf(std::string_view host) {
    DeviceName device;
    while (!host.empty()) {
        const std::size_t mapped = MapFirst(host, device);
        if (mapped == 0) {
            return {};
        }
        host.remove_prefix(mapped);
    }
    return device;
}

bool HostNameOf(std::u16string_view device, HostName& host) {
    host = HostName();
    for (std::size_t index = 0; index < device.size();) {
        if (!AppendBytes(host, NextCharacter(device, index))) {
            return false;
        }
    }
    const std::string_view bytes = host.view();
    const bool canExist = !bytes.empty() && bytes != "." && bytes != ".." &&
                          bytes.find('/') == std::string_view::npos &&
                          bytes.find('\0') == std::string_view::npos && !IsReservedName(bytes);
    return canExist && DeviceNameOf(bytes).view() == device;
}

}  // namespace platform
