#pragma once

#include <cstdint>

#include "engine/apply_run.h"

// When a step runs. Always: the option only says which of two things it does. WithControls: in the
// interactive run alone, for what is selected in the controls.
enum class StepRuns { WhenTicked, Always, WithControls };

// One step of the sequence, with the option that it belongs to.
struct ApplyStep {
    int number;
    std::uint32_t option;
    void (*task)(ApplyRun& run, std::uint32_t option);
    StepRuns runs = StepRuns::WhenTicked;
};

// Carries out the ticked steps, each once and in their fixed order; no failure stops the run. In
// the interactive run the controls say what is ticked, and a box at the end reports what was freed.
// In the silent run the settings file says it, and without one nothing is done. If a change needs a
// restart and `allowRestart` is set, the settings are saved and the device restarts; otherwise an
// interactive run reports in a box that a restart is due.
void ApplySettings(bool allowRestart);
