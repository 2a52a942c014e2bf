#pragma once

#include "platform/command_line/command_line.h"

namespace platform {

// Lets the user choose the device directory on the display and runs the program on it. A folder
// that is no device is not taken; where nothing is in it, a sample device is made if the user wants
// that. Returns the exit code, 0 when the user cancels.
int RunOnChosenDevice(CommandLine& line);

}  // namespace platform
