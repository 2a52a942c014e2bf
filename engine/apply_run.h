#pragma once

#include <cstdint>

#include "core/settings_record.h"
#include "core/wide_text.h"

// Bytes of the files deleted so far. A size is added only after its file was deleted.
extern std::uint32_t BytesCleaned;

// The state that the steps of one run share.
struct ApplyRun {
    std::uint32_t mask;
    CSettings& settings;

    // Work buffers, empty at the start of each step: one for paths that a step builds, one for
    // texts that it reads or formats.
    PathText PathBuffer{};
    PathText ValueBuffer{};

    bool RestartNeeded = false;  // a change takes effect only after a restart
};
