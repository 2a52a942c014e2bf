#pragma once

#include "platform/command_line/command_line.h"

namespace platform {

// Changes the device's stored options as --set asks for, and then writes them to standard output:
// all as --show-settings does, or else those that were set. Nothing of the device changes but
// settings.dat, which is wholly the old one or wholly the new one, and the directories on the way
// to it, where they are missing. Returns the exit code.
int RunSettingsCommands(const CommandLine& line);

}  // namespace platform
