#pragma once

#include <memory>
#include <string>

#include "platform/file_store.h"
#include "platform/registry.h"

namespace platform {

// The device store of a device directory on this machine: its files and its registry.
class DirectoryStore : public FileStore {
  public:
    // `files` and `modulePath` are those of FileStore.
    DirectoryStore(Descriptor files, std::u16string modulePath, std::unique_ptr<Registry> registry)
        : FileStore(std::move(files), std::move(modulePath)), registry_(std::move(registry)) {}

    // Stores what has changed in the registry. Returns an empty text, or why that failed.
    std::string Finish();

    // A restart ends the process with exit code 0, which is what it does to every program of the
    // device; what standard streams hold is written first.
    BOOL KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                         DWORD* returned) override;

    LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                       HKEY* result) override;
    LONG RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                          DWORD* size) override;
    LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                        DWORD size) override;
    LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                       WCHAR* className, DWORD* classSize, void* lastWriteTime) override;
    LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey) override;
    LONG RegCloseKey(HKEY key) override;

  private:
    std::unique_ptr<Registry> registry_;
};

}  // namespace platform
