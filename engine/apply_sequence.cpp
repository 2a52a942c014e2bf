#include "engine/apply_sequence.h"

#include <optional>

#include "core/application.h"
#include "core/handheld_operations.h"
#include "core/host_notes.h"
#include "core/option_table.h"
#include "core/window_operations.h"
#include "engine/application_keys.h"
#include "engine/browser_caches.h"
#include "engine/device_tweaks.h"
#include "engine/folder_relocation.h"
#include "engine/selected_items.h"
#include "engine/shortcut_cleaning.h"
#include "engine/temporary_files.h"
#include "settings/control_settings.h"
#include "settings/settings_file.h"

std::uint32_t BytesCleaned = 0;

namespace {

constexpr ApplyStep kSteps[] = {
    {1, OPT_CLEAN_USER1, CleanTemporaryDirectory},
    {2, OPT_CLEAN_USER2, CleanTemporaryDirectory},
    {3, OPT_CLEAN_ROOT_TEMP, CleanTemporaryDirectory},
    {4, OPT_CLEAN_WINDOWS_TEMP, CleanTemporaryDirectory},
    {5, OPT_CLEAN_MYDOCS_TEMP, CleanTemporaryDirectory},
    {6, OPT_CLEAR_IE_CACHE, ClearBrowserDirectory},
    {7, OPT_CLEAR_IE_HISTORY, ClearBrowserDirectory},
    {8, OPT_MOVE_IE_CACHE, RelocateFolder},
    {9, OPT_LIMIT_IE_CACHE, LimitBrowserCache},
    {10, OPT_LIMIT_IE_HISTORY, LimitBrowserCache},
    {11, OPT_LIMIT_IE_COOKIES, LimitBrowserCache},
    {12, OPT_MOVE_AVANTGO, RelocateFolder},
    {13, OPT_CLEAR_REGISTRY, CleanApplicationKeys},
    {14, OPT_MOVE_FAVORITES, RelocateFolder},
    {15, OPT_MOVE_FONTS, RelocateFolder},
    {16, OPT_MOVE_MYDOCS, RelocateFolder},
    {17, OPT_CLEAN_START_MENU, CleanStartMenu},
    {18, OPT_FONT_CACHE, SetFontCache},
    {19, OPT_SILENT_STARTUP, SetStartupShortcut, StepRuns::Always},
    {20, OPT_NO_MENU_ANIMATION, SetAnimation, StepRuns::Always},
    {21, OPT_NO_WINDOW_ANIMATION, SetAnimation, StepRuns::Always},
    {22, 0, DeleteSelectedDirectories, StepRuns::WithControls},
    {23, 0, DeleteSelectedFiles, StepRuns::WithControls},
    {24, 0, DeleteSelectedShortcuts, StepRuns::WithControls},
};

bool Runs(const ApplyStep& step, std::uint32_t mask) {
    switch (step.runs) {
        case StepRuns::WhenTicked:
            return (mask & step.option) != 0;
        case StepRuns::Always:
            return true;
        case StepRuns::WithControls:
            return !g_Silent;
    }
    return false;
}

void CarryOut(const ApplyStep& step, ApplyRun& run) {
    if (!Runs(step, run.mask)) {
        return;
    }
    NoteStep(step.number);
    step.task(run, step.option);
    run.PathBuffer.fill(0);
    run.ValueBuffer.fill(0);
}

// The option mask of this run; nothing if the silent run has none.
std::optional<std::uint32_t> FetchMask() {
    if (!g_Silent) {
        return CaptureSettings(*g_Settings);
    }
    const std::int32_t loaded = LoadSettings(*g_Settings);
    return loaded == kNoMask ? std::nullopt : std::optional(static_cast<std::uint32_t>(loaded));
}

// Reports what the run has freed and resets the count for the next one.
void ReportBytesCleaned(PathText& text) {
    FormatText(text, TEXT("%d Bytes Cleaned"), {static_cast<std::int32_t>(BytesCleaned)});
    MessageBoxW(nullptr, text.data(), TEXT("Cleaning Finished"), MB_OK);
    BytesCleaned = 0;
}

// Returns whether something takes effect only after a restart.
bool CarryOutAll(std::uint32_t mask) {
    ApplyRun run{mask, *g_Settings};
    for (const ApplyStep& step : kSteps) {
        CarryOut(step, run);
    }
    NoteStep(0);
    if (!g_Silent) {
        ReportBytesCleaned(run.ValueBuffer);
    }
    return run.RestartNeeded;
}

// The restart ends the process, so the settings must be saved before it.
void Restart() {
    if (!g_Silent) {
        SaveSettings(*g_Settings);
    }
    KernelIoControl(IOCTL_HAL_REBOOT, nullptr, 0, nullptr, 0, nullptr);
}

}  // namespace

void ApplySettings(bool allowRestart) {
    const std::optional<std::uint32_t> mask = FetchMask();
    if (!mask || !CarryOutAll(*mask)) {
        return;
    }
    if (allowRestart) {
        Restart();
    } else if (!g_Silent) {
        MessageBoxW(nullptr,
                    TEXT("Some settings will not take effect until the device has been restarted"),
                    TEXT("Restart Required"), MB_OK);
    }
}
