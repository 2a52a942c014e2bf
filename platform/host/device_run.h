#pragma once

#include "platform/host/command_line.h"

namespace platform {

// Runs the program on the device directory that the command line names, from the device's lock to
// the last line of the report. Returns the exit code; a restart of the device ends the process.
int RunOnDevice(CommandLine& line);

// Makes a sample device in the directory that the command line names.
Status MakeSampleDevice(const CommandLine& line);

// The same, with a failure as a line on standard error. Returns the exit code.
int MakeSample(const CommandLine& line);

}  // namespace platform
