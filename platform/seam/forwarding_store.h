#pragma once

#include "platform/seam/device_store.h"

namespace platform {

// Hands every operation on to another store, which stays its owner's. A wrapper derives from it and
// changes the one thing that it is for: an operation, or where the next one goes.
class ForwardingStore : public DeviceStore {
  public:
    explicit ForwardingStore(DeviceStore& inner) : inner_(inner) {}

    HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) override {
        return inner().FindFirstFileW(pattern, data);
    }
    BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) override {
        return inner().FindNextFileW(find, data);
    }
    BOOL FindClose(HANDLE find) override { return inner().FindClose(find); }
    BOOL DeleteFileW(const WCHAR* path) override { return inner().DeleteFileW(path); }
    BOOL RemoveDirectoryW(const WCHAR* path) override { return inner().RemoveDirectoryW(path); }
    BOOL CreateDirectoryW(const WCHAR* path, void* security) override {
        return inner().CreateDirectoryW(path, security);
    }
    BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) override {
        return inner().MoveFileW(oldPath, newPath);
    }
    std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode) override {
        return inner()._wfopen(path, mode);
    }
    DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD limit) override {
        return inner().GetModuleFileNameW(module, buffer, limit);
    }
    BOOL CreateProcessW(const WCHAR* image, const WCHAR* commandLine, void* processSecurity,
                        void* threadSecurity, BOOL inherit, DWORD flags, void* environment,
                        WCHAR* directory, void* startup, void* information) override {
        return inner().CreateProcessW(image, commandLine, processSecurity, threadSecurity, inherit,
                                      flags, environment, directory, startup, information);
    }
    BOOL SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit) override {
        return inner().SHGetShortcutTarget(path, buffer, limit);
    }
    BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target) override {
        return inner().SHCreateShortcut(path, target);
    }
    BOOL KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                         DWORD* returned) override {
        return inner().KernelIoControl(code, input, inputSize, output, outputSize, returned);
    }
    void SetCleanRebootFlag() override { inner().SetCleanRebootFlag(); }
    LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                       HKEY* result) override {
        return inner().RegOpenKeyExW(key, subkey, options, access, result);
    }
    LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                          DWORD* size) override {
        return inner().RegQueryValueExW(key, name, reserved, type, data, size);
    }
    LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                        DWORD size) override {
        return inner().RegSetValueExW(key, name, reserved, type, data, size);
    }
    LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                       WCHAR* className, DWORD* classSize, void* lastWriteTime) override {
        return inner().RegEnumKeyExW(key, index, name, size, reserved, className, classSize,
                                     lastWriteTime);
    }
    LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey) override {
        return inner().RegDeleteKeyW(key, subkey);
    }
    LONG RegCloseKey(HKEY key) override { return inner().RegCloseKey(key); }

    const Failure& LastFailure() const override { return inner_.LastFailure(); }
    std::optional<std::uint64_t> DeletedSize() const override { return inner_.DeletedSize(); }
    RegistryChanges ChangesOfRegistry() const override { return inner_.ChangesOfRegistry(); }
    bool IsChangeLost(std::uint64_t change) const override { return inner_.IsChangeLost(change); }
    Status StoreRegistry() override { return inner_.StoreRegistry(); }
    void DirectoryMoves(const WCHAR* oldPath, const WCHAR* newPath) override {
        inner_.DirectoryMoves(oldPath, newPath);
    }
    void DirectoryMoved(const WCHAR* oldPath, const WCHAR* newPath) override {
        inner_.DirectoryMoved(oldPath, newPath);
    }
    void NothingMoves(const WCHAR* source, const WCHAR* destination) override {
        inner_.NothingMoves(source, destination);
    }

  protected:
    // The one that gets the next of the platform's operations; asked once for each.
    virtual DeviceStore& inner() { return inner_; }

  private:
    DeviceStore& inner_;
};

}  // namespace platform
