#include "engine/folder_relocation.h"

#include "core/error_box.h"
#include "core/option_table.h"
#include "engine/file_tree.h"
#include "engine/option_row_lookup.h"
#include "engine/registry_path.h"

namespace {

struct Folder {
    std::uint32_t option;
    HKEY root;
    const WCHAR* key;
    const WCHAR* value;
    SettingsText CSettings::*destination;
    PathUse oldFolder;
    const WCHAR* keyMissing;
    const WCHAR* valueMissing;
};

constexpr const WCHAR* kSystemFolders = TEXT("Explorer\\Shell Folders");

// The spelling of the messages is what the handheld's users know.
const Folder kFolders[] = {
    {OPT_MOVE_IE_CACHE, HKEY_CURRENT_USER,
     TEXT("Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders"), TEXT("Cache"),
     &CSettings::IeCacheDir, PathUse::Cleaned,
     TEXT("Unable to locate Internet Explorer cache directory"),
     TEXT("Unable to locate Internet Explorer cache directory")},
    {OPT_MOVE_AVANTGO, HKEY_CURRENT_USER, TEXT("Software\\AvantGo"), TEXT("DatabaseLocation"),
     &CSettings::AvantGoDir, PathUse::Moved, TEXT("Unable to locate AvantGo cache"),
     TEXT("Unable to locate AvantGo cache directory")},
    {OPT_MOVE_FAVORITES, HKEY_LOCAL_MACHINE, kSystemFolders, TEXT("Favorites"),
     &CSettings::FavoritesDir, PathUse::Moved, TEXT("Unable to locate Favorites"),
     TEXT("Unable to locate Favorties directory")},
    {OPT_MOVE_FONTS, HKEY_LOCAL_MACHINE, kSystemFolders, TEXT("Fonts"), &CSettings::FontsDir,
     PathUse::Moved, TEXT("Unable to locate Fonts"), TEXT("Unable to locate Fonts directory")},
    {OPT_MOVE_MYDOCS, HKEY_LOCAL_MACHINE, kSystemFolders, TEXT("My Documents"),
     &CSettings::MyDocumentsDir, PathUse::Moved, TEXT("Unable to locate My Documents"),
     TEXT("Unable to locate My Documents directory")},
};

// Returns whether the registry may name the new place now.
bool ClearOldFolder(ApplyRun& run, const Folder& folder, const WCHAR* destination) {
    if (folder.oldFolder == PathUse::Moved) {
        return MoveTree(run.ValueBuffer.data(), destination);
    }
    if (FormatText(run.PathBuffer, TEXT("%s\\"), {run.ValueBuffer.data()})) {
        DeleteTree(run.PathBuffer.data(), true, false);
    }
    return true;
}

}  // namespace

void RelocateFolder(ApplyRun& run, std::uint32_t option) {
    const Folder& folder = RowOf(kFolders, option);
    const SettingsText destination = std::move(run.settings.*folder.destination);
    if (destination == nullptr || destination[0] == 0) {
        return;
    }
    RegistryKey key(folder.root, folder.key, 0);
    if (!key) {
        ShowError(folder.keyMissing);
    }
    const PathRead old =
        ReadPath(key, folder.value, folder.valueMissing, folder.oldFolder, run.ValueBuffer);
    // If the old place could not be read, replacing it would lose what is there.
    if (old == PathRead::Unusable ||
        (old == PathRead::Usable && ClearOldFolder(run, folder, destination.get()))) {
        key.WriteText(folder.value, destination.get());
    }
}
