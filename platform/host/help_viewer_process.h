#pragma once

#include "platform/command_line/command_line.h"

namespace platform {

// The process of a help viewer: shows the page that comes on standard input until its window is
// closed. Returns the exit code.
int RunHelpViewer(const CommandLine& line);

}  // namespace platform
