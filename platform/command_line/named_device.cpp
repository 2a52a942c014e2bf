#include "platform/command_line/named_device.h"

#include <array>

#include "platform/device/device_halves.h"

namespace platform {

namespace {

bool HasKeys(DeviceRegistry& registry, HKEY root) {
    std::array<WCHAR, 256> name{};
    auto size = static_cast<DWORD>(name.size());
    return registry.RegEnumKeyExW(root, 0, name.data(), &size, nullptr, nullptr, nullptr,
                                  nullptr) == ERROR_SUCCESS;
}

}  // namespace

Result<DeviceDirectory> OpenNamedDevice(const CommandLine& line) {
    return line.isByHalves ? OpenDeviceHalves({line.device, line.registry, line.state})
                           : OpenDeviceDirectory(line.device.c_str());
}

// Desktop editors leave the current user's root out of a full export: there it is only another name
// for a part of HKEY_USERS.
std::string AdviceOnExport(DeviceRegistry& registry) {
    const bool isDesktops = HasKeys(registry, HKEY_USERS) && !HasKeys(registry, HKEY_CURRENT_USER);
    return isDesktops ? "the registry has no HKEY_CURRENT_USER, as a desktop's full export has "
                        "none: export that root too and add its lines, or the browser's and "
                        "AvantGo's folders are reported as missing"
                      : "";
}

}  // namespace platform
