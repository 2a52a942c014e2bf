#pragma once

#include "platform/host/command_line.h"

namespace platform {

// Runs the program on the device directory that the command line names, from the device's lock to
// the last line of the report. Returns the exit code; a restart of the device ends the process.
int RunOnDevice(CommandLine& line);

}  // namespace platform
