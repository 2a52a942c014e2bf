#include "platform/device/directory_store.h"

#include <sysexits.h>

#include <cstdlib>
#include <utility>

#include "platform/device/hard_reset.h"
#include "platform/diagnostics/run_log.h"
#include "platform/text/device_names.h"
#include "platform/text/readable_text.h"
#include "shell/help_page.h"

namespace platform {

Status DirectoryStore::CheckStorable() {
    isChecked_ = true;
    return registry_->CheckStorable();
}

void DirectoryStore::EnsureStorable() {
    if (isChecked_) {
        return;
    }
    if (const Status storable = CheckStorable(); !storable) {
        LogInUse::Current().Say("nothing was changed, because the registry could not be stored: " +
                                Describe(storable.error()));
        exit_(EX_CANTCREAT);
    }
}

Status DirectoryStore::StoreRegistry() {
    tried_ = registry_->made();
    Status stored = registry_->Store();
    if (!stored) {
        RunLog& log = LogInUse::Current();
        log.NoteNotStored();
        log.SayUndone("changes to the registry are not stored: " + Describe(stored.error()));
    }
    return stored;
}

// What could not be stored is tried again once there is more to be stored, not before each of a
// hundred thousand deletions, which may be what makes the room.
Status DirectoryStore::BeforeChange() {
    EnsureStorable();
    if (registry_->made() > tried_) {
        [[maybe_unused]] const Status stored = StoreRegistry();
    }
    return {};
}

// A folder that has moved while the registry still names the old place is lost to its owner. So the
// room comes first, and a step in which it is missing moves nothing at all.
Status DirectoryStore::BeforeMove() {
    if (Status ready = BeforeChange(); !ready) {
        return ready;
    }
    const bool isRefused = refusedInStep_ == LogInUse::Current().stepsBegun();
    Status kept = isRefused ? FailBecause("move", "another move was refused before")
                            : registry_->ReserveRoom();
    return kept ? kept : RefuseMove(kept.error());
}

Status DirectoryStore::RefuseMove(const Failure& failure) {
    RunLog& log = LogInUse::Current();
    if (refusedInStep_ != log.stepsBegun()) {
        refusedInStep_ = log.stepsBegun();
        log.NoteNotStored();
        log.SayUndone("nothing is moved, because the registry could not be stored after it: " +
                      Describe(failure));
    }
    return FailBecause("move", "there is no room to store the registry after it",
                       ERROR_NO_SYSTEM_RESOURCES);
}

BOOL DirectoryStore::KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output,
                                     DWORD outputSize, DWORD* returned) {
    if (code != IOCTL_HAL_REBOOT) {
        return FileStore::KernelIoControl(code, input, inputSize, output, outputSize, returned);
    }
    if (const Status erased = std::exchange(erases_, false) ? Erase() : Status(); !erased) {
        LogInUse::Current().Say("not erased, and not restarted: " + Describe(erased.error()));
        return KeepFailure(erased);
    }
    exit_(EXIT_SUCCESS);
    std::abort();
}

// What is stored after it would be stored on the erased device.
Status DirectoryStore::Erase() {
    Status possible = CheckStorable();
    possible = possible ? StoreRegistry() : possible;
    if (!possible) {
        return possible;
    }
    const Result<std::string> folder = EraseDevice(registry_->directory(), Today());
    if (!folder) {
        return tl::unexpected<Failure>(folder.error());
    }
    LogInUse::Current().Say("erased; all that was on the device is in " + *folder);
    return {};
}

Status DirectoryStore::StartProgram(std::u16string_view image, std::u16string_view commandLine) {
    if (viewers_ == nullptr || !SameName(image, kHelpViewerImage)) {
        return FileStore::StartProgram(image, commandLine);
    }
    const HelpRequest request = ParseHelpRequest(commandLine);
    const Result<std::string> page = ReadWhole(request.path, kLargestHelpPage);
    return viewers_->Open(page ? std::string_view(*page) : kHelpPage, Utf8Text(request.place));
}

DeviceStore::RegistryChanges DirectoryStore::ChangesOfRegistry() const {
    return {registry_->made(), registry_->stored()};
}

// The registry has taken the change into memory alone: this is the time to ask.
LONG DirectoryStore::Changed(LONG result, std::uint64_t before) {
    if (registry_->made() > before) {
        EnsureStorable();
    }
    return result;
}

LONG DirectoryStore::RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                                   HKEY* result) {
    return registry_->RegOpenKeyExW(key, subkey, options, access, result);
}

LONG DirectoryStore::RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type,
                                      BYTE* data, DWORD* size) {
    return registry_->RegQueryValueExW(key, name, reserved, type, data, size);
}

LONG DirectoryStore::RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type,
                                    const BYTE* data, DWORD size) {
    const std::uint64_t before = registry_->made();
    return Changed(registry_->RegSetValueExW(key, name, reserved, type, data, size), before);
}

LONG DirectoryStore::RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                                   WCHAR* className, DWORD* classSize, void* lastWriteTime) {
    return registry_->RegEnumKeyExW(key, index, name, size, reserved, className, classSize,
                                    lastWriteTime);
}

LONG DirectoryStore::RegDeleteKeyW(HKEY key, const WCHAR* subkey) {
    const std::uint64_t before = registry_->made();
    return Changed(registry_->RegDeleteKeyW(key, subkey), before);
}

LONG DirectoryStore::RegCloseKey(HKEY key) {
    return registry_->RegCloseKey(key);
}

}  // namespace platform
