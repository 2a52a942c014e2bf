#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/command_line.h"
#include "platform/seam/device_store.h"

namespace platform {

// What the device does when it starts.

// A shortcut of the StartUp folder.
struct StartupShortcut {
    std::u16string path;
    std::u16string target;                    // its whole text; empty when it is no shortcut
    std::optional<std::u16string> arguments;  // none when it starts another program
    std::optional<Failure> unread;            // why it could not be read; none when it could
};

// The shortcuts of the StartUp folder, by name. `program` is the path of this program on the
// device.
Result<std::vector<StartupShortcut>> StartupShortcuts(DeviceStore& store,
                                                      std::u16string_view program);

// The arguments with which a shortcut's target starts `program`; none when it starts another one.
// The path can be in quotes or not; what is behind it, without blanks in front, are the arguments.
std::optional<std::u16string> ArgumentsFor(std::u16string_view program, std::u16string_view target);

// Does what the device does when it starts: runs the program, in a process of its own, for each
// shortcut of the StartUp folder that names it. Returns the exit code that tells most: the worst
// one of all runs.
int BootDevice(const CommandLine& line);

// The one of two exit codes that says more about what went wrong.
int WorseExitCode(int left, int right);

}  // namespace platform
