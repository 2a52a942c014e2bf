#pragma once

namespace platform::qt {

// Has assistive technology see combo boxes with their labels and values, tabs with the chosen one
// selected, and the desktop's windows as such; the toolkit's own descriptions lack these. Once in a
// process.
void DescribeControls();

}  // namespace platform::qt
