#pragma once

#include <algorithm>

#include "platform/files/host_files.h"
#include "platform/seam/forwarding_store.h"

namespace platform {

// A device that has files, shortcuts and the program's path, no key in its registry and nothing
// else, for what needs no more: it asks nobody before it changes files.
class FilesAlone : public ForwardingStore {
  public:
    explicit FilesAlone(Descriptor root, std::u16string modulePath = {})
        : ForwardingStore(files_, none_, none_),
          files_(std::move(root)),
          none_(std::move(modulePath)) {}

    void RecoverFromKilledRuns() { files_.RecoverFromKilledRuns(); }

  private:
    struct Nothing : DeviceRegistry, DeviceSystem {
        explicit Nothing(std::u16string path) : modulePath(std::move(path)) {}

        LONG RegOpenKeyExW(HKEY, const WCHAR*, DWORD, DWORD, HKEY* result) override {
            *result = nullptr;
            return ERROR_FILE_NOT_FOUND;
        }
        LONG RegQueryValueExW(HKEY, const WCHAR*, DWORD*, DWORD*, BYTE*, DWORD*) override {
            return ERROR_FILE_NOT_FOUND;
        }
        LONG RegSetValueExW(HKEY, const WCHAR*, DWORD, DWORD, const BYTE*, DWORD) override {
            return ERROR_INVALID_HANDLE;
        }
        LONG RegEnumKeyExW(HKEY, DWORD, WCHAR*, DWORD*, DWORD*, WCHAR*, DWORD*, void*) override {
            return ERROR_INVALID_HANDLE;
        }
        LONG RegDeleteKeyW(HKEY, const WCHAR*) override { return ERROR_INVALID_HANDLE; }
        LONG RegCloseKey(HKEY) override { return ERROR_INVALID_HANDLE; }
        RegistryChanges ChangesOfRegistry() const override { return {}; }
        bool IsChangeLost(std::uint64_t) const override { return false; }
        Status StoreRegistry() override { return {}; }

        DWORD GetModuleFileNameW(HINSTANCE, WCHAR* buffer, DWORD limit) override {
            if (modulePath.size() >= limit) {
                return 0;
            }
            *std::copy(modulePath.begin(), modulePath.end(), buffer) = 0;
            return static_cast<DWORD>(modulePath.size());
        }
        BOOL CreateProcessW(const WCHAR*, const WCHAR*, void*, void*, BOOL, DWORD, void*, WCHAR*,
                            void*, void*) override {
            return 0;
        }
        BOOL KernelIoControl(DWORD, void*, DWORD, void*, DWORD, DWORD*) override { return 0; }
        void SetCleanRebootFlag() override {}

        std::u16string modulePath;
    };

    HostFiles files_;
    Nothing none_;
};

}  // namespace platform
