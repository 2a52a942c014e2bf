#pragma once

#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>

#include "platform/files/file_store.h"
#include "platform/host/help_viewer.h"
#include "platform/registry/registry.h"

namespace platform {

// The device store of a device directory on this machine: its files and its registry.
//
// Changes of the registry are gathered and stored before the next change of the file tree, so that
// their order is kept, and whenever StoreRegistry is called. Nothing at all changes unless the
// registry can be stored.
class DirectoryStore : public FileStore {
  public:
    // Ends the run on the spot with this exit code, 0 for a restart of the device; does not return.
    // The default ends the process.
    using Exit = std::function<void(int)>;

    // `files` and `modulePath` are those of FileStore.
    DirectoryStore(
        Descriptor files, std::u16string modulePath, std::unique_ptr<Registry> registry,
        Exit exit = [](int code) { std::_Exit(code); })
        : FileStore(std::move(files), std::move(modulePath)),
          registry_(std::move(registry)),
          exit_(std::move(exit)) {}

    // Whether the registry can be stored, but for the room. Asked once by the store itself before
    // the first change, where it ends the run if it fails, unless it was asked before.
    Status CheckStorable();

    // Gives the device a help viewer; without one there is no program to be started on it.
    void OfferHelp(std::unique_ptr<HelpViewers> viewers) { viewers_ = std::move(viewers); }

    // A restart ends the run, which is what it does to every program of the device. One that is to
    // erase the device comes back where that cannot be done, and the log has the reason.
    BOOL KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                         DWORD* returned) override;
    void SetCleanRebootFlag() override { erases_ = true; }

    RegistryChanges ChangesOfRegistry() const override;
    bool IsChangeLost(std::uint64_t change) const override { return registry_->IsLost(change); }
    Status StoreRegistry() override;

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

  protected:
    Status BeforeChange() override;
    Status BeforeMove() override;
    Status StartProgram(std::u16string_view image, std::u16string_view commandLine) override;

  private:
    LONG Changed(LONG result, std::uint64_t before);
    void EnsureStorable();
    Status RefuseMove(const Failure& failure);
    Status Erase();

    std::unique_ptr<Registry> registry_;
    Exit exit_;
    std::unique_ptr<HelpViewers> viewers_;  // null where nobody could see them
    bool erases_ = false;                   // the next restart does
    bool isChecked_ = false;
    std::uint64_t tried_ = 0;                // changes that there were at the last storing
    std::optional<unsigned> refusedInStep_;  // the step in which a move was refused, counted
};

}  // namespace platform
