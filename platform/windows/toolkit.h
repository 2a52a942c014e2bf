#pragma once

#include <QApplication>
#include <functional>
#include <memory>

namespace platform::windows {

// Starts the toolkit on the display. `scale` is the number of desktop pixels for a pixel of the
// handheld; 0: the largest whole number at which the screen fits the desktop. Null where no display
// can be opened: the toolkit itself would end the process. The result lives as long as there are
// windows.
std::unique_ptr<QApplication> StartToolkit(double scale);

}  // namespace platform::windows
