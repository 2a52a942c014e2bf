#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/device/help_viewer_start.h"
#include "platform/device/registry_guard.h"
#include "platform/files/host_files.h"
#include "platform/registry/registry_key_operations.h"

namespace platform {

// What is left of the handheld beside files and registry: where the program lies, its restart and
// hard reset, and the help viewer.
class HandheldSystem : public DeviceSystem {
  public:
    // What it works on; all stay the caller's.
    struct Parts {
        HostFiles& files;
        Registry& registry;
        RegistryGuard& guard;
    };

    // `modulePath` is where the program's executable lies on the device; `restart` ends the run.
    HandheldSystem(const Parts& parts, std::u16string modulePath, std::function<void()> restart)
        : parts_(parts), modulePath_(std::move(modulePath)), restart_(std::move(restart)) {}

    // Refuses to erase a device whose parts have no directory of their own.
    void KeepFromErasing() { canBeErased_ = false; }

    // Gives the device a help viewer; without one there is no program to be started on it.
    void OfferHelp(std::unique_ptr<HelpViewers> viewers) { viewers_ = std::move(viewers); }

    DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD limit) override;
    BOOL CreateProcessW(const WCHAR* image, const WCHAR* commandLine, void* processSecurity,
                        void* threadSecurity, BOOL inherit, DWORD flags, void* environment,
                        WCHAR* directory, void* startup, void* information) override;

    // A restart ends the run, which is what it does to every program of the device. One that is to
    // erase the device comes back where that cannot be done, and the log has the reason.
    BOOL KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                         DWORD* returned) override;
    void SetCleanRebootFlag() override { erases_ = true; }

  private:
    Status CopyModulePath(WCHAR* buffer, DWORD limit) const;
    Status StartProgram(std::u16string_view image, std::u16string_view commandLine);
    Status Restart();
    Status Erase();

    Parts parts_;
    std::u16string modulePath_;
    std::function<void()> restart_;
    std::unique_ptr<HelpViewers> viewers_;  // null where there is no display
    bool canBeErased_ = true;
    bool erases_ = false;  // the next restart does
};

}  // namespace platform
