#pragma once

#include "platform/command_line/command_line.h"

namespace platform {

// Does what the device does when it starts: runs the program, in a process of its own, for each
// shortcut of the StartUp folder that names it. Returns the exit code that says most: the worst
// one of all runs.
int BootDevice(const CommandLine& line);

}  // namespace platform
