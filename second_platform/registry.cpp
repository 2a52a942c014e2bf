// The registry: its roots are keys of a key of the device's own.

#include "second_platform/handheld.h"

namespace {

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

void Exchange(HKEY root, const std::wstring& path) {
    HKEY key = nullptr;
    RegOverridePredefKey(root, nullptr);
    RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                    nullptr);
    RegOverridePredefKey(root, key);
    RegCloseKey(key);
}

}  // namespace

// The one below which the keys lie comes last.
void UseRegistry(const std::wstring& registry) {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    Exchange(HKEY_LOCAL_MACHINE, registry + L"\\HKEY_LOCAL_MACHINE");
    Exchange(HKEY_CURRENT_USER, registry + L"\\HKEY_CURRENT_USER");
}

extern "C" {

// The handheld knows no access rights.
LONG HandheldRegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD /*options*/, DWORD /*access*/,
                           HKEY* result) {
    *result = nullptr;
    return RegOpenKeyExW(key, Plain(subkey).c_str(), 0, KEY_ALL_ACCESS, result);
}

LONG HandheldRegDeleteKeyW(HKEY key, const WCHAR* subkey) {
    const std::wstring path = Plain(subkey);
    return path.empty() ? ERROR_INVALID_PARAMETER : RegDeleteTreeW(key, path.c_str());
}
}
