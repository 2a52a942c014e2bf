#pragma once

#include <memory>

#include "core/found_entries.h"
#include "core/host_notes.h"
#include "core/wide_text.h"

// The state of one level of a tree walk: its search, and room for one path. It belongs on the heap,
// because a tree can have hundreds of levels.
struct TreeLevel {
    // Starts the walk of `directory`; `format` makes the search pattern. Returns false if that does
    // not fit: then the search finds nothing, no failure is set, and the host gets a note.
    bool Open(const WCHAR* format, const WCHAR* directory) {
        if (!FormatText(path, format, {directory})) {
            NoteTooLong(directory, TEXT("*"));
            return false;
        }
        entries.Open(path.data());
        return true;
    }

    PathText path;
    FoundEntries entries;
};

// A new level; its buffers are not initialised.
template <typename Level = TreeLevel>
std::unique_ptr<Level> NewLevel() {
    return std::make_unique_for_overwrite<Level>();
}
