#pragma once

#include <cstdint>

#include "core/settings_record.h"
#include "core/wide_text.h"

// Bytes of the files deleted so far. A size is added only after its file has gone.
extern std::uint32_t BytesCleaned;

// What the steps of one run share.
struct ApplyRun {
    std::uint32_t mask;
    CSettings& settings;

    // Work buffers, empty at the start of each step: for paths that a step builds, and for texts
    // that it reads or formats.
    PathText PathBuffer{};
    PathText ValueBuffer{};

    bool RestartNeeded = false;  // something takes effect only after a restart
};
