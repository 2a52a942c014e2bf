#pragma once

#include "platform/command_line/command_line.h"

namespace platform {

// Makes a sample device in the directory that the command line names.
Status MakeSampleDevice(const CommandLine& line);

// The same, with a failure as a line on standard error. Returns the exit code.
int RunMakeSampleDevice(const CommandLine& line);

}  // namespace platform
