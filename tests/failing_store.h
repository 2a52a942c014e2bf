#pragma once

#include "platform/forwarding_store.h"

// Lets the n-th call of an operation that can fail come back with its failure, without having done
// anything; all others go on.
class FailingStore : public platform::ForwardingStore {
  public:
    // `failing` counts from 1; 0 lets every call through.
    FailingStore(platform::DeviceStore& inner, int failing)
        : ForwardingStore(inner), failing_(failing) {}

    int calls() const { return calls_; }

    HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) override {
        return Fails() ? INVALID_HANDLE_VALUE : inner().FindFirstFileW(pattern, data);
    }
    BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) override {
        return Fails() ? 0 : inner().FindNextFileW(find, data);
    }
    BOOL DeleteFileW(const WCHAR* path) override { return Fails() ? 0 : inner().DeleteFileW(path); }
    BOOL RemoveDirectoryW(const WCHAR* path) override {
        return Fails() ? 0 : inner().RemoveDirectoryW(path);
    }
    BOOL CreateDirectoryW(const WCHAR* path, void* security) override {
        return Fails() ? 0 : inner().CreateDirectoryW(path, security);
    }
    BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) override {
        return Fails() ? 0 : inner().MoveFileW(oldPath, newPath);
    }
    std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode) override {
        return Fails() ? nullptr : inner()._wfopen(path, mode);
    }
    DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD limit) override {
        return Fails() ? 0 : inner().GetModuleFileNameW(module, buffer, limit);
    }
    BOOL SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit) override {
        return Fails() ? 0 : inner().SHGetShortcutTarget(path, buffer, limit);
    }
    BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target) override {
        return Fails() ? 0 : inner().SHCreateShortcut(path, target);
    }
    LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                       HKEY* result) override {
        *result = nullptr;
        return Fails() ? ERROR_FILE_NOT_FOUND
                       : inner().RegOpenKeyExW(key, subkey, options, access, result);
    }
    LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                          DWORD* size) override {
        return Fails() ? ERROR_FILE_NOT_FOUND
                       : inner().RegQueryValueExW(key, name, reserved, type, data, size);
    }
    LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                        DWORD size) override {
        return Fails() ? ERROR_WRITE_FAULT
                       : inner().RegSetValueExW(key, name, reserved, type, data, size);
    }
    LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                       WCHAR* className, DWORD* classSize, void* lastWriteTime) override {
        return Fails() ? ERROR_NO_MORE_ITEMS
                       : inner().RegEnumKeyExW(key, index, name, size, reserved, className,
                                               classSize, lastWriteTime);
    }
    LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey) override {
        return Fails() ? ERROR_WRITE_FAULT : inner().RegDeleteKeyW(key, subkey);
    }

  private:
    bool Fails() { return ++calls_ == failing_; }

    int failing_;
    int calls_ = 0;
};
