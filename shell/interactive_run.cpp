#include "shell/interactive_run.h"

#include "core/application.h"
#include "core/settings_record.h"
#include "core/window_operations.h"
#include "screens/screens.h"
#include "settings/settings_file.h"
#include "shell/about_box.h"
#include "shell/main_windows.h"

namespace {

// The process-wide pointers own the objects of the run. Each one is set before its object makes
// anything, because what is made reads the pointers.
template <typename Object>
Object& Make(Object*& pointer) {
    pointer = new Object;
    return *pointer;
}

template <typename Object>
void Delete(Object*& pointer) {
    delete pointer;
    pointer = nullptr;
}

// The settings come last, because loading them fills the controls.
void CreateAll() {
    Make(g_MenuBar);
    Make(g_MainWindow).Create();
    Make(g_TabBar).Create();
    Make(g_DisplayWindow).Create();
    Make(g_Screens).CreateScreens();
    LoadSettings(Make(g_Settings));
}

// WM_QUIT does not end the run: only commands that have saved the settings do.
void ServeMessages() {
    while (g_Running) {
        MSG message{};
        if (GetMessageW(&message, nullptr, 0, 0) != 0) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

// Children are destroyed before their parents.
void DestroyAll() {
    CloseAboutBox();
    Delete(g_Settings);
    g_Screens->DestroyScreens();
    Delete(g_Screens);
    g_DisplayWindow->Destroy();
    Delete(g_DisplayWindow);
    g_TabBar->Destroy();
    Delete(g_TabBar);
    g_MenuBar->Destroy();
    Delete(g_MenuBar);
    g_MainWindow->Destroy();
    Delete(g_MainWindow);
}

}  // namespace

void RunInteractive() {
    CreateAll();
    ServeMessages();
    DestroyAll();
    g_Instance = nullptr;
    g_Running = false;
}
