#include "shell/device_commands.h"

#include "core/file_operations.h"
#include "core/handheld_operations.h"
#include "core/window_operations.h"

namespace {

bool Confirmed(const WCHAR* text) {
    return MessageBoxW(nullptr, text, TEXT("Please Confirm"), MB_YESNO | MB_ICONEXCLAMATION) ==
           IDYES;
}

}  // namespace

void SwitchOff() {
    keybd_event(VK_OFF, 0, KEYEVENTF_SILENT, 0);
    keybd_event(VK_OFF, 0, KEYEVENTF_SILENT | KEYEVENTF_KEYUP, 0);
}

void SoftReset() {
    KernelIoControl(IOCTL_HAL_REBOOT, nullptr, 0, nullptr, 0, nullptr);
}

void HardReset() {
    if (Confirmed(TEXT("WARNING: Hard Reseting Will Erase ALL data!!!\n\n"
                       "Marlowtide accepts no reposibility for data loss resulting from the use of "
                       "this function.\n\nDo you wish to perform a hard reset?")) &&
        Confirmed(TEXT("Are you really sure?"))) {
        SetCleanRebootFlag();
        SoftReset();
    }
}

void OpenHelpIndex() {
    CreateProcessW(TEXT("peghelp.exe"), TEXT("file:brightdoc.htm#Main_Contents"), nullptr, nullptr,
                   FALSE, 0, nullptr, nullptr, nullptr, nullptr);
}
