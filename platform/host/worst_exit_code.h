#pragma once

namespace platform {

// The one of two exit codes that says more about what went wrong.
int WorseExitCode(int left, int right);

}  // namespace platform
