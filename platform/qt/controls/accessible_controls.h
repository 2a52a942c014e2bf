#pragma once

namespace platform::qt {

// Has assistive technology see combo boxes with their labels and values, tabs with the chosen one
// selected, and the desktop's windows as such; the toolkit's own descriptions lack these. To be
// called before the first window is made: the toolkit keeps its description of what it was asked
// for before, and while assistive technology listens it asks from the window's first change on.
void DescribeControls();

}  // namespace platform::qt
