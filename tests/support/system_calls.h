#pragma once

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
