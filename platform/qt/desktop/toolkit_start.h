#pragma once

#include <QApplication>
#include <functional>
#include <memory>

struct xcb_connection_t;

namespace platform::qt {

// Starts the toolkit on the display. `scale` is the number of desktop pixels for a pixel of the
// handheld; 0: the largest whole number at which the screen fits the desktop. Null where no display
// can be opened: the toolkit itself would end the process. The result lives as long as there are
// windows.
std::unique_ptr<QApplication> StartToolkit(double scale);

// The connection of the started toolkit to its X display; null where it has another kind.
xcb_connection_t* XConnection();

// Whether that connection has broken off: the toolkit would end the process where it looks for
// events.
bool DisplayIsLost();

}  // namespace platform::qt
