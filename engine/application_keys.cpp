#include "engine/application_keys.h"

#include <memory>

#include "core/error_box.h"
#include "engine/found_entries.h"
#include "engine/location_value.h"

namespace {

// Whether the application's install directory is gone. An empty text names nothing and so counts as
// a directory that is gone.
bool IsInstallDirectoryGone(const WCHAR* keyPath) {
    const RegistryKey key(HKEY_LOCAL_MACHINE, keyPath, KEY_ALL_ACCESS);
    const auto directory = std::make_unique<PathText>();
    return key && ReadText(key, TEXT("InstallDir"), *directory) == TextRead::Whole &&
           !FoundEntries(directory->data());
}

}  // namespace

void CheckAppKey(const WCHAR* appName, HKEY appsKey) {
    const auto path = std::make_unique<PathText>();
    if (FormatText(*path, TEXT("Software\\Apps\\%s"), {appName}) &&
        IsInstallDirectoryGone(path->data())) {
        RegDeleteKeyW(appsKey, appName);
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
