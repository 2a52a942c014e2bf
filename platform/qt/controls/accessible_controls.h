#pragma once

namespace platform::qt {

// Has assistive technology see combo boxes with their labels and values, tabs with the chosen one
// selected, and the desktop's windows as such; the toolkit's own descriptions lack these. To be
// called before the first window is made: while assistive technology listens, the toolkit asks from
// a window's first change on, and asks for each window once.
void DescribeControls();

}  // namespace platform::qt
