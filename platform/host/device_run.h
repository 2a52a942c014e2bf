#pragma once

#include "platform/command_line/command_line.h"
#include "platform/host/run_report.h"

namespace platform {

// Runs the program on the device directory that the command line names, from the device's lock to
// the last line of the report. `shared` is that of one of several runs and stays the caller's.
// Returns the exit code; a restart of the device ends the process.
int RunOnDevice(CommandLine& line, const SharedReport* shared = nullptr);

}  // namespace platform
