#include "engine/browser_caches.h"

#include "core/error_box.h"
#include "core/option_table.h"
#include "engine/file_tree.h"
#include "engine/option_row_lookup.h"
#include "engine/registry_path.h"

namespace {

constexpr const WCHAR* kShellFolders =
    TEXT("Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders");

struct BrowserDirectory {
    std::uint32_t option;
    const WCHAR* value;
    bool removeDirectories;  // the history needs its own
};

constexpr BrowserDirectory kDirectories[] = {
    {OPT_CLEAR_IE_CACHE, TEXT("Cache"), true},
    {OPT_CLEAR_IE_HISTORY, TEXT("History"), false},
};

constexpr const WCHAR* kDirectoryMissing =
    TEXT("Unable to locate Internet Explorer cache directory");

struct BrowserLimit {
    std::uint32_t option;
    const WCHAR* key;
    std::int32_t CSettings::*position;
    DWORD kilobytes[3];  // the second one if the position is out of range
    const WCHAR* missing;
};

constexpr BrowserLimit kLimits[] = {
    {OPT_LIMIT_IE_CACHE,
     TEXT("Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\5.0\\Cache\\Content"),
     &CSettings::IeCacheLimitIndex,
     {1024, 2048, 3072},
     TEXT("Unable to locate Internet Explorer cache limit")},
    {OPT_LIMIT_IE_HISTORY,
     TEXT("Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\5.0\\Cache\\History"),
     &CSettings::IeHistoryLimitIndex,
     {256, 512, 1024},
     TEXT("Unable to locate Internet Explorer history limit")},
    {OPT_LIMIT_IE_COOKIES,
     TEXT("Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\5.0\\Cache\\Cookies"),
     &CSettings::IeCookieLimitIndex,
     {256, 512, 1024},
     TEXT("Unable to locate Internet Explorer cookie limit")},
};

}  // namespace

void ClearBrowserDirectory(ApplyRun& run, std::uint32_t option) {
    const BrowserDirectory& directory = RowOf(kDirectories, option);
    const RegistryKey key(HKEY_CURRENT_USER, kShellFolders, 0);
    if (!key) {
        ShowError(kDirectoryMissing);
    }
    if (ReadPath(key, directory.value, kDirectoryMissing, PathUse::Cleaned, run.ValueBuffer) ==
            PathRead::Usable &&
        FormatText(run.PathBuffer, TEXT("%s\\"), {run.ValueBuffer.data()})) {
        DeleteTree(run.PathBuffer.data(), true, directory.removeDirectories);
    }
}

void LimitBrowserCache(ApplyRun& run, std::uint32_t option) {
    const BrowserLimit& limit = RowOf(kLimits, option);
    RegistryKey key(HKEY_CURRENT_USER, limit.key, 0);
    if (!key) {
        ShowError(limit.missing);
    }
    const std::int32_t position = run.settings.*limit.position;
    key.WriteNumber(TEXT("CacheLimit"),
                    limit.kilobytes[position == 0 || position == 2 ? position : 1]);
}
