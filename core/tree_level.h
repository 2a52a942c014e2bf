#pragma once

#include <memory>

#include "core/found_entries.h"
#include "core/wide_text.h"

// What one level of a tree needs while it is walked: its search, and room for one path at a time.
// It lives on the heap, because a tree can be as deep as a path is long.
struct TreeLevel {
    // Starts the walk of `directory`; `format` makes its search pattern. One that does not fit
    // finds nothing.
    void Open(const WCHAR* format, const WCHAR* directory) {
        if (FormatText(path, format, {directory})) {
            entries.Open(path.data());
        }
    }

    PathText path;
    FoundEntries entries;
};

// A level with nothing in its buffers.
template <typename Level = TreeLevel>
std::unique_ptr<Level> NewLevel() {
    return std::make_unique_for_overwrite<Level>();
}
