#pragma once

#include "platform/command_line/command_line.h"

namespace platform {

// Does the silent run that the command line asks for on each of its devices, one after the other,
// in a process for each: what ends one leaves the others alone. Returns the exit code that says
// most. Meanwhile the line's device is the one at work.
int RunOnSeveralDevices(CommandLine& line);

}  // namespace platform
