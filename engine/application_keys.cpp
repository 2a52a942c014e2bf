#include "engine/application_keys.h"

#include <memory>

#include "core/error_box.h"
#include "core/host_notes.h"
#include "engine/entry_lookup.h"
#include "engine/registry_path.h"

namespace {

// Looks up the application's install directory. An empty text names nothing, so the directory is
// not there. If no text can be read, nothing is looked up, and the directory counts as found.
LookupResult LookUpInstallDirectory(const WCHAR* keyPath) {
    const RegistryKey key(HKEY_LOCAL_MACHINE, keyPath, KEY_ALL_ACCESS);
    const auto directory = std::make_unique<PathText>();
    if (!key || ReadText(key, TEXT("InstallDir"), *directory) != TextRead::Whole) {
        return LookupResult::Found;
    }
    EntryLookup lookup;
    lookup.Find(directory->data());
    return lookup.result();
}

}  // namespace

void CheckAppKey(const WCHAR* appName, HKEY appsKey) {
    const auto path = std::make_unique<PathText>();
    if (!FormatText(*path, TEXT("Software\\Apps\\%s"), {appName})) {
        return;
    }
    const LookupResult result = LookUpInstallDirectory(path->data());
    if (result == LookupResult::NotThere) {
        RegDeleteKeyW(appsKey, appName);
    } else if (result == LookupResult::Failed) {
        NoteKept(path->data());
    }
}

void CleanApplicationKeys(ApplyRun& run, std::uint32_t /*option*/) {
    const RegistryKey apps(HKEY_LOCAL_MACHINE, TEXT("\\Software\\Apps"), KEY_ALL_ACCESS);
    if (!apps) {
        ShowError(TEXT("Failed retrieving registry information"));
    }
    DWORD size = kTextCapacity;
    for (DWORD index = 0; RegEnumKeyExW(apps.get(), index, run.ValueBuffer.data(), &size, nullptr,
                                        nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++index) {
        CheckAppKey(run.ValueBuffer.data(), apps.get());
        size = kTextCapacity;
    }
}
