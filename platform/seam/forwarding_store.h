#pragma once

#include "platform/seam/device_store.h"

namespace platform {

// Hands every operation on to the three parts of a device, which stay their owner's. A wrapper
// derives from it and changes the one thing that it is for: an operation, or where the next one
// goes.
class ForwardingStore : public DeviceStore {
  public:
    ForwardingStore(DeviceFiles& files, DeviceRegistry& registry, DeviceSystem& system)
        : files_(files), registry_(registry), system_(system) {}
    explicit ForwardingStore(DeviceStore& inner) : ForwardingStore(inner, inner, inner) {}

    HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) override {
        return files().FindFirstFileW(pattern, data);
    }
    BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) override {
        return files().FindNextFileW(find, data);
    }
    BOOL FindClose(HANDLE find) override { return files().FindClose(find); }
    BOOL DeleteFileW(const WCHAR* path) override { return files().DeleteFileW(path); }
    BOOL RemoveDirectoryW(const WCHAR* path) override { return files().RemoveDirectoryW(path); }
    BOOL CreateDirectoryW(const WCHAR* path, void* security) override {
        return files().CreateDirectoryW(path, security);
    }
    BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) override {
        return files().MoveFileW(oldPath, newPath);
    }
    std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode) override {
        return files()._wfopen(path, mode);
    }
    DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD limit) override {
        return system().GetModuleFileNameW(module, buffer, limit);
    }
    BOOL CreateProcessW(const WCHAR* image, const WCHAR* commandLine, void* processSecurity,
                        void* threadSecurity, BOOL inherit, DWORD flags, void* environment,
                        WCHAR* directory, void* startup, void* information) override {
        return system().CreateProcessW(image, commandLine, processSecurity, threadSecurity, inherit,
                                       flags, environment, directory, startup, information);
    }
    BOOL SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit) override {
        return files().SHGetShortcutTarget(path, buffer, limit);
    }
    BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target) override {
        return files().SHCreateShortcut(path, target);
    }
    BOOL KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                         DWORD* returned) override {
        return system().KernelIoControl(code, input, inputSize, output, outputSize, returned);
    }
    void SetCleanRebootFlag() override { system().SetCleanRebootFlag(); }
    LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                       HKEY* result) override {
        return registry().RegOpenKeyExW(key, subkey, options, access, result);
    }
    LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                          DWORD* size) override {
        return registry().RegQueryValueExW(key, name, reserved, type, data, size);
    }
    LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                        DWORD size) override {
        return registry().RegSetValueExW(key, name, reserved, type, data, size);
    }
    LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                       WCHAR* className, DWORD* classSize, void* lastWriteTime) override {
        return registry().RegEnumKeyExW(key, index, name, size, reserved, className, classSize,
                                        lastWriteTime);
    }
    LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey) override {
        return registry().RegDeleteKeyW(key, subkey);
    }
    LONG RegCloseKey(HKEY key) override { return registry().RegCloseKey(key); }

    const Failure& LastFailure() const override { return files_.LastFailure(); }
    std::optional<std::uint64_t> DeletedSize() const override { return files_.DeletedSize(); }
    RegistryChanges ChangesOfRegistry() const override { return registry_.ChangesOfRegistry(); }
    bool IsChangeLost(std::uint64_t change) const override {
        return registry_.IsChangeLost(change);
    }
    Status StoreRegistry() override { return registry_.StoreRegistry(); }
    void NothingToClean(const WCHAR* directory) override { files_.NothingToClean(directory); }
    void DirectoryMoves(const WCHAR* oldPath, const WCHAR* newPath) override {
        files_.DirectoryMoves(oldPath, newPath);
    }
    void DirectoryMoved(const WCHAR* oldPath, const WCHAR* newPath) override {
        files_.DirectoryMoved(oldPath, newPath);
    }
    void NothingMoves(const WCHAR* source, const WCHAR* destination) override {
        files_.NothingMoves(source, destination);
    }

  protected:
    // The parts that get the next of the platform's operations; asked once for each.
    virtual DeviceFiles& files() { return files_; }
    virtual DeviceRegistry& registry() { return registry_; }
    virtual DeviceSystem& system() { return system_; }

  private:
    DeviceFiles& files_;
    DeviceRegistry& registry_;
    DeviceSystem& system_;
};

}  // namespace platform
