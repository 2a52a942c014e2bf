#pragma once

#include <functional>

#include "tests/support/fake_windows.h"
#include "tests/support/temporary_device.h"

// The interactive program on a device and with windows of its own. The process-wide state must be
// zero when it runs, as at process start.
class InteractiveProgram {
  public:
    using Steps = std::vector<std::function<void()>>;

    // `entries` are those of TemporaryDevice::Make. The program's executable lies in "\App".
    explicit InteractiveProgram(const Entries& entries = {});

    // Runs WinMain to its end and returns its result. Each step is carried out when the program
    // waits; then the main window's OK ends it.
    int Run(const Steps& steps = {});

    // A control of the running program.
    FakeWindow& Control(UINT screen, UINT item);
    // Sends the main window a menu command.
    void Choose(WORD command);
    // Taps a tab. Returns what both notifications gave, 0 when they gave different results or there
    // are no tabs.
    LRESULT ChooseTab(int index);

    std::string SettingsFile() const { return ReadFile(device.files() + "/App/settings.dat"); }

    TemporaryDevice device;
    FakeWindows windows;
    std::string notes;  // on standard error
    int restarts = 0;   // 1 when a restart of the device has ended the run
};
