#include "engine/shortcut_cleaning.h"

#include <memory>

#include "core/handheld_operations.h"
#include "core/host_notes.h"
#include "core/tree_level.h"
#include "engine/shortcut_target_lookup.h"

bool ShortcutTargetExists(const WCHAR* shortcutPath) {
    const auto target = std::make_unique<PathText>();
    if (SHGetShortcutTarget(shortcutPath, target->data(), kTextCapacity) == 0) {
        return true;
    }
    const LookupResult result = LookUpTarget(target->data());
    if (result == LookupResult::Failed) {
        NoteKept(shortcutPath);
    }
    return result != LookupResult::NotThere;
}

// NOLINTNEXTLINE(misc-no-recursion)
void CleanShortcuts(const WCHAR* directory) {
    const auto level = NewLevel();
    FoundEntries& entries = level->entries;
    for (level->Open(TEXT("%s\\*"), directory); entries; entries.Next()) {
        if (!FormatText(level->path, TEXT("%s\\%s"), {directory, entries.name()})) {
            continue;
        }
        if (entries.isDirectory()) {
            CleanShortcuts(level->path.data());
        } else if (!ShortcutTargetExists(level->path.data()) &&
                   DeleteFileW(level->path.data()) != 0) {
            BytesCleaned += entries.sizeLow();
        }
    }
}

void CleanStartMenu(ApplyRun& /*run*/, std::uint32_t /*option*/) {
    CleanShortcuts(TEXT("\\Windows\\Start Menu"));
}
