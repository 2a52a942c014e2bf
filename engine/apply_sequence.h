#pragma once

#include <cstdint>

#include "core/settings_record.h"

// Bytes of the files deleted so far. A size is added only after its file has gone.
extern std::uint32_t BytesCleaned;

// Number of the step of the Apply sequence that is being carried out; 0 outside of one.
extern int g_ApplyStep;

// What the steps of one run share.
struct ApplyRun {
    std::uint32_t mask;
    CSettings& settings;
};

// One step. It runs when its option is in the run's mask.
struct ApplyStep {
    int number;
    std::uint32_t option;
    void (*task)(ApplyRun& run, std::uint32_t option);
};

// Carries out what is ticked, each step once and in their fixed order; a failure never stops the
// run. `allowRestart`: whether the device may be restarted when a setting needs it.
void ApplySettings(bool allowRestart);
