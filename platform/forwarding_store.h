#pragma once

#include "platform/device_store.h"

namespace platform {

// Hands every operation on to another store, which stays its owner's. A wrapper derives from it and
// changes the one thing that it is for.
class ForwardingStore : public DeviceStore {
  public:
    explicit ForwardingStore(DeviceStore& inner) : inner_(inner) {}

    HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) override {
        return inner_.FindFirstFileW(pattern, data);
    }
    BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) override {
        return inner_.FindNextFileW(find, data);
    }
    BOOL FindClose(HANDLE find) override { return inner_.FindClose(find); }
    BOOL DeleteFileW(const WCHAR* path) override { return inner_.DeleteFileW(path); }
    BOOL RemoveDirectoryW(const WCHAR* path) override { return inner_.RemoveDirectoryW(path); }
    BOOL CreateDirectoryW(const WCHAR* path, void* security) override {
        return inner_.CreateDirectoryW(path, security);
    }
    BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) override {
        return inner_.MoveFileW(oldPath, newPath);
    }
    std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode) override {
        return inner_._wfopen(path, mode);
    }
    DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD limit) override {
        return inner_.GetModuleFileNameW(module, buffer, limit);
    }
    BOOL SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit) override {
        return inner_.SHGetShortcutTarget(path, buffer, limit);
    }
    BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target) override {
        return inner_.SHCreateShortcut(path, target);
    }
    BOOL KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                         DWORD* returned) override {
        return inner_.KernelIoControl(code, input, inputSize, output, outputSize, returned);
    }
    LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                       HKEY* result) override {
        return inner_.RegOpenKeyExW(key, subkey, options, access, result);
    }
    LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                          DWORD* size) override {
        return inner_.RegQueryValueExW(key, name, reserved, type, data, size);
    }
    LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                        DWORD size) override {
        return inner_.RegSetValueExW(key, name, reserved, type, data, size);
    }
    LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                       WCHAR* className, DWORD* classSize, void* lastWriteTime) override {
        return inner_.RegEnumKeyExW(key, index, name, size, reserved, className, classSize,
                                    lastWriteTime);
    }
    LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey) override {
        return inner_.RegDeleteKeyW(key, subkey);
    }
    LONG RegCloseKey(HKEY key) override { return inner_.RegCloseKey(key); }

  protected:
    DeviceStore& inner() { return inner_; }

  private:
    DeviceStore& inner_;
};

}  // namespace platform
