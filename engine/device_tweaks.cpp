#include "engine/device_tweaks.h"

#include <cstdio>

#include "core/error_box.h"
#include "core/file_operations.h"
#include "core/handheld_operations.h"
#include "core/option_table.h"
#include "engine/option_row_lookup.h"
#include "engine/registry_key.h"

namespace {

constexpr const WCHAR* kStartupShortcut = TEXT("\\Windows\\StartUp\\Fennelbright.lnk");

// In bytes; the first one if the position is out of range.
constexpr DWORD kFontCaches[] = {8192, 16384, 32768};

struct Animation {
    std::uint32_t option;
    const WCHAR* key;
    const WCHAR* value;
    DWORD on;  // off is 0
    const WCHAR* missing;
};

constexpr Animation kAnimations[] = {
    {OPT_NO_MENU_ANIMATION, TEXT("System\\GWE\\Menu"), TEXT("AniType"), 6,
     TEXT("Unable to locate Menu Animation")},
    {OPT_NO_WINDOW_ANIMATION, TEXT("System\\GWE"), TEXT("Animate"), 1,
     TEXT("Unable to locate Window Animation")},
};

bool CanBeOpened(const WCHAR* path) {
    std::FILE* const file = _wfopen(path, TEXT("r"));
    if (file == nullptr) {
        return false;
    }
    std::fclose(file);
    return true;
}

void MakeStartupShortcut(ApplyRun& run) {
    if (GetModuleFileNameW(nullptr, run.PathBuffer.data(), kTextCapacity) != 0 &&
        FormatText(run.ValueBuffer, TEXT("\"%s\" silent\""), {run.PathBuffer.data()})) {
        SHCreateShortcut(kStartupShortcut, run.ValueBuffer.data());
    }
}

// 0 if the value cannot be read, which a box reports.
DWORD ReadAnimation(const RegistryKey& key, const Animation& animation) {
    DWORD current = 0;
    DWORD size = sizeof current;
    if (RegQueryValueExW(key.get(), animation.value, nullptr, nullptr,
                         reinterpret_cast<BYTE*>(&current), &size) != ERROR_SUCCESS) {
        ShowError(animation.missing);
        return 0;
    }
    return current;
}

}  // namespace

void SetFontCache(ApplyRun& run, std::uint32_t /*option*/) {
    RegistryKey key(HKEY_LOCAL_MACHINE, TEXT("System\\GDI\\GLYPHCACHE"), 0);
    if (!key) {
        ShowError(TEXT("Unable to locate GlyphCache"));
    }
    const std::int32_t position = run.settings.FontCacheIndex;
    key.WriteNumber(TEXT("limit"), kFontCaches[position == 1 || position == 2 ? position : 0]);
}

void SetStartupShortcut(ApplyRun& run, std::uint32_t option) {
    if ((run.mask & option) == 0) {
        DeleteFileW(kStartupShortcut);
    } else if (!CanBeOpened(kStartupShortcut)) {
        MakeStartupShortcut(run);
    }
}

void SetAnimation(ApplyRun& run, std::uint32_t option) {
    const Animation& animation = RowOf(kAnimations, option);
    RegistryKey key(HKEY_LOCAL_MACHINE, animation.key, 0);
    if (!key) {
        ShowError(animation.missing);
    }
    const DWORD wanted = (run.mask & option) != 0 ? 0 : animation.on;
    if (ReadAnimation(key, animation) != wanted) {
        key.WriteNumber(animation.value, wanted);
        run.RestartNeeded = true;
    }
}
