#pragma once

#include <memory>

#include "core/found_entries.h"
#include "core/wide_text.h"

// The state of one level of a tree walk: its search, and room for one path. It belongs on the heap,
// because a tree can have hundreds of levels.
struct TreeLevel {
    // Starts the walk of `directory`; `format` makes the search pattern. If that does not fit, the
    // search finds nothing.
    void Open(const WCHAR* format, const WCHAR* directory) {
        if (FormatText(path, format, {directory})) {
            entries.Open(path.data());
        }
    }

    PathText path;
    FoundEntries entries;
};

// A new level; its buffers are not initialised.
template <typename Level = TreeLevel>
std::unique_ptr<Level> NewLevel() {
    return std::make_unique_for_overwrite<Level>();
}
