// The registry: its roots are keys of a key of the device's own.

#include "tests/second_platform/handheld.h"

namespace handheld {

namespace {

struct Root {
    HKEY key;
    const WCHAR* name;
    HKEY opened = nullptr;
};

Root g_roots[] = {{HKEY_CLASSES_ROOT, L"HKEY_CLASSES_ROOT"},
                  {HKEY_CURRENT_USER, L"HKEY_CURRENT_USER"},
                  {HKEY_LOCAL_MACHINE, L"HKEY_LOCAL_MACHINE"},
                  {HKEY_USERS, L"HKEY_USERS"}};

HKEY Real(HKEY key) {
    for (const Root& root : g_roots) {
        key = root.key == key ? root.opened : key;
    }
    return key;
}

// Without leading, trailing and doubled backslashes.
std::wstring Plain(const WCHAR* path) {
    std::wstring plain;
    for (; path != nullptr && *path != 0; ++path) {
        if (*path != L'\\' || (path[1] != L'\\' && path[1] != 0 && !plain.empty())) {
            plain += *path;
        }
    }
    return plain;
}

}  // namespace

void UseRegistry(const std::wstring& registry) {
    for (Root& root : g_roots) {
        RegCloseKey(root.opened);
        RegCreateKeyExW(HKEY_CURRENT_USER, (registry + L'\\' + root.name).c_str(), 0, nullptr, 0,
                        KEY_ALL_ACCESS, nullptr, &root.opened, nullptr);
    }
}

// The handheld knows no access rights.
LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD /*options*/, DWORD /*access*/,
                   HKEY* result) {
    *result = nullptr;
    return ::RegOpenKeyExW(Real(key), Plain(subkey).c_str(), 0, KEY_ALL_ACCESS, result);
}

LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size) {
    return ::RegQueryValueExW(Real(key), name, reserved, type, data, size);
}

LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD size) {
    return ::RegSetValueExW(Real(key), name, reserved, type, data, size);
}

LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                   WCHAR* className, DWORD* classSize, FILETIME* lastWriteTime) {
    return ::RegEnumKeyExW(Real(key), index, name, size, reserved, className, classSize,
                           lastWriteTime);
}

LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey) {
    const std::wstring path = Plain(subkey);
    return path.empty() ? ERROR_INVALID_PARAMETER : RegDeleteTreeW(Real(key), path.c_str());
}

}  // namespace handheld
