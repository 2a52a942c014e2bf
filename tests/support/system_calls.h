#pragma once

#include <functional>

// The system's functions for files, as a test wants them. A test that links system_calls.cpp has
// them in front of the C library's.
struct SystemCalls {
    // What the file system knows.
    bool namelessFiles = true;
    bool renamingFlags = true;
    bool links = true;

    // The call, counted from 1, that is the process's last one, or that fails with `error` where
    // that is not 0; none at 0.
    int faultAt = 0;
    int error = 0;
};
extern SystemCalls g_calls;

// How a process with a fault has ended, where it has not with a result of its own.
inline constexpr int kKilled = -1;
inline constexpr int kNoSuchCall = 255;  // there were not so many calls

// Does the work with such calls, in a process of its own, and returns the work's result or one of
// these.
int RunWithFault(const SystemCalls& calls, const std::function<int()>& work);
