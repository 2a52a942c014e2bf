#include "engine/folder_relocation.h"

#include "core/error_box.h"
#include "core/options.h"
#include "engine/file_tree.h"
#include "engine/location_value.h"
#include "engine/option_rows.h"

namespace {

enum class OldContent { Deleted, Moved };

struct Folder {
    std::uint32_t option;
    HKEY root;
    const WCHAR* key;
    const WCHAR* value;
    SettingsText CSettings::*destination;
    OldContent oldContent;
    const WCHAR* keyMissing;
    const WCHAR* valueMissing;
};

constexpr const WCHAR* kSystemFolders = TEXT("Explorer\\Shell Folders");

// The spelling of the messages is what the handheld's users know.
const Folder kFolders[] = {
    {OPT_MOVE_IE_CACHE, HKEY_CURRENT_USER,
     TEXT("Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders"), TEXT("Cache"),
     &CSettings::IeCacheDir, OldContent::Deleted,
     TEXT("Unable to locate Internet Explorer cache directory"),
     TEXT("Unable to locate Internet Explorer cache directory")},
    {OPT_MOVE_AVANTGO, HKEY_CURRENT_USER, TEXT("Software\\AvantGo"), TEXT("DatabaseLocation"),
     &CSettings::AvantGoDir, OldContent::Moved, TEXT("Unable to locate AvantGo cache"),
     TEXT("Unable to locate AvantGo cache directory")},
    {OPT_MOVE_FAVORITES, HKEY_LOCAL_MACHINE, kSystemFolders, TEXT("Favorites"),
     &CSettings::FavoritesDir, OldContent::Moved, TEXT("Unable to locate Favorites"),
     TEXT("Unable to locate Favorties directory")},
    {OPT_MOVE_FONTS, HKEY_LOCAL_MACHINE, kSystemFolders, TEXT("Fonts"), &CSettings::FontsDir,
     OldContent::Moved, TEXT("Unable to locate Fonts"), TEXT("Unable to locate Fonts directory")},
    {OPT_MOVE_MYDOCS, HKEY_LOCAL_MACHINE, kSystemFolders, TEXT("My Documents"),
     &CSettings::MyDocumentsDir, OldContent::Moved, TEXT("Unable to locate My Documents"),
     TEXT("Unable to locate My Documents directory")},
};

void ClearOldFolder(ApplyRun& run, const Folder& folder, const WCHAR* destination) {
    if (folder.oldContent == OldContent::Moved) {
        MoveTree(run.ValueBuffer.data(), destination);
    } else if (FormatText(run.PathBuffer, TEXT("%s\\"), {run.ValueBuffer.data()})) {
        DeleteTree(run.PathBuffer.data(), true, false);
    }
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
    // A new location beside an old one that nobody knows would lose what is there.
    if (ReadLocation(key, folder.value, folder.valueMissing, run.ValueBuffer)) {
        ClearOldFolder(run, folder, destination.get());
        key.WriteText(folder.value, destination.get());
    }
}
