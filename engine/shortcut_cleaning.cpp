#include "engine/shortcut_cleaning.h"

#include <memory>

#include "core/handheld_operations.h"
#include "core/host_notes.h"
#include "engine/found_entries.h"
#include "engine/shortcut_target.h"

namespace {

// What one level of the menu needs while it is walked; on the heap, since menus can be deep.
struct MenuLevel {
    PathText path;
    FoundEntries entries;
};

}  // namespace

bool ShortcutTargetExists(const WCHAR* shortcutPath) {
    const auto target = std::make_unique<PathText>();
    if (SHGetShortcutTarget(shortcutPath, target->data(), kTextCapacity) == 0) {
        return true;
    }
    const Look look = LookForTarget(target->data());
    if (look == Look::Failed) {
        NoteKept(shortcutPath);
    }
    return look != Look::NotThere;
}

// NOLINTNEXTLINE(misc-no-recursion)
void CleanShortcuts(const WCHAR* directory) {
    const auto level = std::make_unique<MenuLevel>();
    if (!FormatText(level->path, TEXT("%s\\*"), {directory})) {
        return;
    }
    FoundEntries& entries = level->entries;
    for (entries.Open(level->path.data()); entries; entries.Next()) {
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
