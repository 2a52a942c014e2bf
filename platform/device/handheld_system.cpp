#include "platform/device/handheld_system.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "platform/device/hard_reset.h"
#include "platform/diagnostics/run_log.h"
#include "platform/text/name_matching.h"
#include "platform/text/text_encoding.h"
#include "shell/help_page.h"

namespace platform {

Status HandheldSystem::CopyModulePath(WCHAR* buffer, DWORD limit) const {
    if (modulePath_.size() >= limit) {
        return FailBecause("give", "it does not fit", ERROR_INSUFFICIENT_BUFFER);
    }
    *std::copy(modulePath_.begin(), modulePath_.end(), buffer) = 0;
    return {};
}

DWORD HandheldSystem::GetModuleFileNameW(HINSTANCE /*module*/, WCHAR* buffer, DWORD limit) {
    const bool isGiven = parts_.files.KeepFailure(CopyModulePath(buffer, limit)) != 0;
    return isGiven ? static_cast<DWORD>(modulePath_.size()) : 0;
}

BOOL HandheldSystem::CreateProcessW(const WCHAR* image, const WCHAR* commandLine,
                                    void* /*processSecurity*/, void* /*threadSecurity*/,
                                    BOOL /*inherit*/, DWORD /*flags*/, void* /*environment*/,
                                    WCHAR* /*directory*/, void* /*startup*/,
                                    void* /*information*/) {
    return parts_.files.KeepFailure(StartProgram(image, commandLine));
}

Status HandheldSystem::StartProgram(std::u16string_view image, std::u16string_view commandLine) {
    if (viewers_ == nullptr || !SameName(image, kHelpViewerImage)) {
        return Fail("start the program", ENOENT);
    }
    const HelpRequest request = ParseHelpRequest(commandLine);
    const Result<std::string> page = parts_.files.ReadWhole(request.path, kLargestHelpPage);
    return viewers_->Open(page ? std::string_view(*page) : kHelpPage, Utf8Text(request.place));
}

BOOL HandheldSystem::KernelIoControl(DWORD code, void* /*input*/, DWORD /*inputSize*/,
                                     void* /*output*/, DWORD /*outputSize*/, DWORD* /*returned*/) {
    return parts_.files.KeepFailure(
        code == IOCTL_HAL_REBOOT
            ? Restart()
            : FailBecause("control", "the device has no such control", ERROR_NOT_SUPPORTED));
}

// The flag holds for this one reset, done or refused.
Status HandheldSystem::Restart() {
    if (Status erased = std::exchange(erases_, false) ? Erase() : Status(); !erased) {
        LogInUse::Current().Say("not erased, and not restarted: " + Describe(erased.error()));
        return erased;
    }
    if (parts_.registry.HasUntriedChanges()) {
        [[maybe_unused]] const Status stored = parts_.registry.StoreRegistry();
    }
    restart_();
    std::abort();
}

// What is stored after it would be stored on the erased device.
Status HandheldSystem::Erase() {
    if (!canBeErased_) {
        return FailBecause("erase the device",
                           "its files and its registry were named one by one, without a device "
                           "directory to keep the old ones in",
                           ERROR_NOT_SUPPORTED);
    }
    Status possible = parts_.guard.CheckStorable();
    possible = possible ? parts_.registry.StoreRegistry() : possible;
    if (!possible) {
        return possible;
    }
    if (parts_.registry.isRehearsed()) {
        possible = CheckErasable(parts_.registry.directory());
        if (possible) {
            LogInUse::Current().Say("the device would be erased here");
        }
        return possible;
    }
    const Result<std::string> folder = EraseDevice(parts_.registry.directory(), Today());
    if (!folder) {
        return tl::unexpected<Failure>(folder.error());
    }
    LogInUse::Current().Say("erased; the old files and registry are in " + *folder +
                            " in the device directory");
    return {};
}

}  // namespace platform
