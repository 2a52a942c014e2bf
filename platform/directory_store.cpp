#include "platform/directory_store.h"

#include <cstdio>
#include <cstdlib>

namespace platform {

std::string DirectoryStore::Finish() {
    if (registry_->Flush()) {
        return {};
    }
    return registry_->error().empty() ? "it cannot be written" : registry_->error();
}

BOOL DirectoryStore::KernelIoControl(DWORD code, void* /*input*/, DWORD /*inputSize*/,
                                     void* /*output*/, DWORD /*outputSize*/, DWORD* /*returned*/) {
    if (code != IOCTL_HAL_REBOOT) {
        return 0;
    }
    const std::string reason = Finish();
    if (!reason.empty()) {
        std::fprintf(stderr, "fennelbright: the registry is not stored: %s\n", reason.c_str());
    }
    std::fflush(nullptr);
    std::_Exit(EXIT_SUCCESS);
}

LONG DirectoryStore::RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                                   HKEY* result) {
    return registry_->RegOpenKeyExW(key, subkey, options, access, result);
}

LONG DirectoryStore::RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type,
                                      BYTE* data, DWORD* size) {
    return registry_->RegQueryValueExW(key, name, reserved, type, data, size);
}

LONG DirectoryStore::RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type,
                                    const BYTE* data, DWORD size) {
    return registry_->RegSetValueExW(key, name, reserved, type, data, size);
}

LONG DirectoryStore::RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                                   WCHAR* className, DWORD* classSize, void* lastWriteTime) {
    return registry_->RegEnumKeyExW(key, index, name, size, reserved, className, classSize,
                                    lastWriteTime);
}

LONG DirectoryStore::RegDeleteKeyW(HKEY key, const WCHAR* subkey) {
    return registry_->RegDeleteKeyW(key, subkey);
}

LONG DirectoryStore::RegCloseKey(HKEY key) {
    return registry_->RegCloseKey(key);
}

}  // namespace platform
