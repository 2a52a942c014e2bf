#include "tests/support/interactive_program.h"

#include "core/application.h"
#include "core/win_main.h"
#include "platform/device/assembled_device.h"
#include "screens/screens.h"
#include "shell/main_windows.h"
#include "tests/support/failing_store.h"

namespace {

// What the end of the process does to what it has left.
void EndProcess() {
    g_Screens->DestroyScreens();
    delete std::exchange(g_Screens, nullptr);
    delete std::exchange(g_Settings, nullptr);
    delete std::exchange(g_DisplayWindow, nullptr);
    delete std::exchange(g_TabBar, nullptr);
    delete std::exchange(g_MenuBar, nullptr);
    delete std::exchange(g_MainWindow, nullptr);
    g_Instance = nullptr;
    g_Running = false;
}

}  // namespace

InteractiveProgram::InteractiveProgram(const Entries& entries) : device(entries) {
    device.Make({"App/"});
}

int InteractiveProgram::Run(const Steps& steps) {
    platform::AssembledDevice store(device.OpenFiles(), u"\\App\\Fennelbright.exe",
                                    device.OpenRegistry(), ThrowRestarted);
    const platform::StoreInUse storeInUse(store);
    const platform::WindowsInUse windowsInUse(windows);
    windows.steps.assign(steps.begin(), steps.end());
    std::u16string noWords;
    int instance = 0;
    testing::internal::CaptureStderr();
    int ended = 0;
    try {
        ended = WinMain(&instance, nullptr, noWords.data(), 0);
    } catch (const DeviceRestarted&) {
        restarts = 1;
        EndProcess();
    }
    notes = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(store.StoreRegistry().has_value());
    return ended;
}

FakeWindow& InteractiveProgram::Control(UINT screen, UINT item) {
    return windows.At(g_Screens->GetScreenItems(screen).ItemAt(item));
}

void InteractiveProgram::Choose(WORD command) {
    windows.Post(g_MainWindow->Window(), WM_COMMAND, command);
}

LRESULT InteractiveProgram::ChooseTab(int index) {
    const auto tabs = windows.windows.find(g_TabBar->Window());
    if (tabs == windows.windows.end()) {
        return 0;
    }
    const auto notify = [&](UINT code) {
        NMHDR header = {tabs->first, 0, code};
        return windows.SendMessageW(g_MainWindow->Window(), WM_NOTIFY, 0,
                                    reinterpret_cast<LPARAM>(&header));
    };
    const LRESULT refused = notify(TCN_SELCHANGING);
    tabs->second.position = index;
    const LRESULT changed = notify(TCN_SELCHANGE);
    return refused == changed ? changed : 0;
}
