#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>

#include "core/file_operations.h"
#include "core/handheld_operations.h"
#include "core/registry_operations.h"
#include "platform/diagnostics/failure.h"

namespace platform {

// What carries out the program's device operations, with their names and contracts: files and
// shortcuts, the registry, and what is left of the handheld. Each can be exchanged on its own.

// The functions of core/file_operations.h, and those of core/handheld_operations.h for shortcuts.
class DeviceFiles {
  public:
    DeviceFiles() = default;
    virtual ~DeviceFiles() = default;
    DeviceFiles(const DeviceFiles&) = delete;
    DeviceFiles& operator=(const DeviceFiles&) = delete;

    virtual HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) = 0;
    virtual BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) = 0;
    virtual BOOL FindClose(HANDLE find) = 0;
    virtual BOOL DeleteFileW(const WCHAR* path) = 0;
    virtual BOOL RemoveDirectoryW(const WCHAR* path) = 0;
    virtual BOOL CreateDirectoryW(const WCHAR* path, void* security) = 0;
    virtual BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) = 0;
    virtual std::FILE* _wfopen(const WCHAR* path, const WCHAR* mode) = 0;
    virtual BOOL SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit) = 0;
    virtual BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target) = 0;

    // Why the last operation of the device that failed has failed, the registry's aside, which
    // return their reasons.
    virtual const Failure& LastFailure() const = 0;

    // The size in bytes of what DeleteFileW deleted last; nothing when it is not known.
    virtual std::optional<std::uint64_t> DeletedSize() const = 0;

    // What the notes of core/host_notes.h say about directories and moves.
    virtual void NothingToClean(const WCHAR* directory) = 0;
    virtual void DirectoryMoves(const WCHAR* oldPath, const WCHAR* newPath) = 0;
    virtual void DirectoryMoved(const WCHAR* oldPath, const WCHAR* newPath) = 0;
    virtual void NothingMoves(const WCHAR* source, const WCHAR* destination) = 0;
};

// The functions of core/registry_operations.h.
class DeviceRegistry {
  public:
    DeviceRegistry() = default;
    virtual ~DeviceRegistry() = default;
    DeviceRegistry(const DeviceRegistry&) = delete;
    DeviceRegistry& operator=(const DeviceRegistry&) = delete;

    virtual LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                               HKEY* result) = 0;
    virtual LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type,
                                  BYTE* data, DWORD* size) = 0;
    virtual LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type,
                                const BYTE* data, DWORD size) = 0;
    virtual LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                               WCHAR* className, DWORD* classSize, void* lastWriteTime) = 0;
    virtual LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey) = 0;
    virtual LONG RegCloseKey(HKEY key) = 0;

    // How many changes there were, and how many of them, the first ones, are stored for good.
    struct RegistryChanges {
        std::uint64_t made = 0;
        std::uint64_t stored = 0;
    };
    virtual RegistryChanges ChangesOfRegistry() const = 0;

    // Whether a change, counted from 1, was lost, because another program has deleted its key.
    virtual bool IsChangeLost(std::uint64_t change) const = 0;

    // Stores what has changed. A failure is reported by a line of the run; it leaves the file as it
    // was, and the changes are stored with the next ones.
    virtual Status StoreRegistry() = 0;
};

// The program's own path, other programs, and power.
class DeviceSystem {
  public:
    DeviceSystem() = default;
    virtual ~DeviceSystem() = default;
    DeviceSystem(const DeviceSystem&) = delete;
    DeviceSystem& operator=(const DeviceSystem&) = delete;

    virtual DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD limit) = 0;
    virtual BOOL CreateProcessW(const WCHAR* image, const WCHAR* commandLine, void* processSecurity,
                                void* threadSecurity, BOOL inherit, DWORD flags, void* environment,
                                WCHAR* directory, void* startup, void* information) = 0;
    virtual BOOL KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output,
                                 DWORD outputSize, DWORD* returned) = 0;
    virtual void SetCleanRebootFlag() = 0;
};

// A whole device.
class DeviceStore : public DeviceFiles, public DeviceRegistry, public DeviceSystem {};

// Makes `store` the one that the program's operations go to, for as long as the object lives. The
// store stays the caller's. One at a time.
class StoreInUse {
  public:
    explicit StoreInUse(DeviceStore& store);
    ~StoreInUse();
    StoreInUse(const StoreInUse&) = delete;
    StoreInUse& operator=(const StoreInUse&) = delete;

    static DeviceStore& Current();  // there has to be one
};

}  // namespace platform
