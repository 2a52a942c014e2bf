#pragma once

#include <cstdint>

#include "engine/apply_run.h"

// When a step runs. One that always runs looks at the mask for its direction; one with the controls
// runs in the interactive run alone, for what is selected in them.
enum class StepRuns { WhenTicked, Always, WithControls };

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
