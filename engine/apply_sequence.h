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

// When a step runs. One that always runs looks at the mask for its direction.
enum class StepRuns { WhenTicked, Always };

// One step of the sequence, with the option that it belongs to.
struct ApplyStep {
    int number;
    std::uint32_t option;
    void (*task)(ApplyRun& run, std::uint32_t option);
    StepRuns runs = StepRuns::WhenTicked;
};

// Carries out what is ticked, each step once and in their fixed order; a failure never stops the
// run. In the interactive run the controls say what is ticked, and a box tells in the end what was
// freed; in the silent run the settings file says it, and without one nothing is done.
// `allowRestart`: whether the device is restarted, the settings saved, when something needs it;
// otherwise an interactive run tells its user.
void ApplySettings(bool allowRestart);
