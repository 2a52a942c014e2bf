#include "core/win_main.h"

#include <memory>

#include "core/application.h"
#include "core/wide_text.h"
#include "core/window_operations.h"
#include "engine/apply_sequence.h"
#include "shell/interactive_run.h"

HINSTANCE g_Instance = nullptr;
bool g_Running = false;
bool g_Silent = false;
CSettings* g_Settings = nullptr;
CMenuBar* g_MenuBar = nullptr;
CMainWindow* g_MainWindow = nullptr;
CTabBar* g_TabBar = nullptr;
CDisplayWindow* g_DisplayWindow = nullptr;
CScreens* g_Screens = nullptr;

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

int WinMain(HINSTANCE hInstance, HINSTANCE /*hPrevInstance*/, WCHAR* lpCmdLine, int /*nShowCmd*/) {
    InitCommonControls();
    g_Instance = hInstance;
    g_Running = true;
    if (IsSilentCommandLine(lpCmdLine)) {
        RunSilent();
    } else {
        RunInteractive();
    }
    return 0;
}
