#include "engine/apply_sequence.h"

#include "core/application.h"
#include "core/options.h"
#include "engine/temporary_files.h"
#include "settings/settings_file.h"

std::uint32_t BytesCleaned = 0;
int g_ApplyStep = 0;

namespace {

constexpr ApplyStep kSteps[] = {
    {1, OPT_CLEAN_USER1, CleanTemporaryDirectory},
    {2, OPT_CLEAN_USER2, CleanTemporaryDirectory},
    {3, OPT_CLEAN_ROOT_TEMP, CleanTemporaryDirectory},
    {4, OPT_CLEAN_WINDOWS_TEMP, CleanTemporaryDirectory},
    {5, OPT_CLEAN_MYDOCS_TEMP, CleanTemporaryDirectory},
};

}  // namespace

void ApplySettings(bool /*allowRestart*/) {
    const std::int32_t loaded = LoadSettings(*g_Settings);
    if (loaded == kNoMask) {
        return;
    }
    ApplyRun run{static_cast<std::uint32_t>(loaded), *g_Settings};
    for (const ApplyStep& step : kSteps) {
        if ((run.mask & step.option) != 0) {
            g_ApplyStep = step.number;
            step.task(run, step.option);
        }
    }
    g_ApplyStep = 0;
}
