#include "engine/temporary_files.h"

#include "core/host_notes.h"
#include "core/option_table.h"
#include "engine/file_tree.h"
#include "engine/option_row_lookup.h"

namespace {

struct TemporaryDirectory {
    std::uint32_t option;
    const WCHAR* path;  // null: typed by the user
    SettingsText CSettings::*typed = nullptr;
};

constexpr TemporaryDirectory kDirectories[] = {
    {OPT_CLEAN_USER1, nullptr, &CSettings::UserDir1},
    {OPT_CLEAN_USER2, nullptr, &CSettings::UserDir2},
    {OPT_CLEAN_ROOT_TEMP, TEXT("\\Temp\\")},
    {OPT_CLEAN_WINDOWS_TEMP, TEXT("\\Windows\\Temp\\")},
    {OPT_CLEAN_MYDOCS_TEMP, TEXT("\\My Documents\\Temp\\")},
};

}  // namespace

void CleanTemporaryDirectory(ApplyRun& run, std::uint32_t option) {
    const TemporaryDirectory& directory = RowOf(kDirectories, option);
    if (directory.typed == nullptr) {
        DeleteTree(directory.path, true, false);
        return;
    }
    const SettingsText typed = std::move(run.settings.*directory.typed);
    if (typed == nullptr) {
        return;
    }
    NoteCleans(option, typed.get());
    if (!DeleteTree(typed.get(), true, false)) {
        NoteNothingToClean(typed.get());
    }
}
