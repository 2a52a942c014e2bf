// Any bytes as a host name have a device name that leads back to them; any units as a device name
// name at most the host entry that maps to them.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/text/name_translation.h"
#include "platform/text/readable_text.h"
#include "platform/text/text_encoding.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), std::min<std::size_t>(size, 255));
    platform::HostName back;
    const platform::DeviceName device = platform::DeviceNameOf(bytes);
    if (platform::HostNameOf(device.view(), back) && back.view() != bytes) {
        std::abort();
    }
    std::u16string units(size / 2, u'\0');
    std::memcpy(units.data(), data, units.size() * 2);
    platform::HostName host;
    if (platform::HostNameOf(units, host) && platform::DeviceNameOf(host.view()).view() != units) {
        std::abort();
    }
    static_cast<void>(platform::ReadableText(units));
    static_cast<void>(platform::WideText(bytes));
    return 0;
}
