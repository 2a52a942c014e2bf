#include "core/win_main.h"

#include <memory>

#include "core/application.h"
#include "core/wide_text.h"
#include "core/window_system.h"
#include "engine/apply_sequence.h"

HINSTANCE g_Instance = nullptr;
bool g_Running = false;
bool g_Silent = false;
CSettings* g_Settings = nullptr;

bool IsSilentCommandLine(const WCHAR* commandLine) {
    return wcsspn(commandLine, TEXT("silent")) != 0;
}

namespace {

void RunSilent() {
    g_Silent = true;
    const auto settings = std::make_unique<CSettings>();
    g_Settings = settings.get();
    ApplySettings(false);
    g_Settings = nullptr;
}

}  // namespace

int WinMain(HINSTANCE instance, HINSTANCE /*previousInstance*/, WCHAR* commandLine,
            int /*showCommand*/) {
    InitCommonControls();
    g_Instance = instance;
    g_Running = true;
    if (IsSilentCommandLine(commandLine)) {
        RunSilent();
    }
    return 0;
}
