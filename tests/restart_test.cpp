#include <gtest/gtest.h>

#include "platform/directory_store.h"
#include "platform/recording_store.h"
#include "tests/temporary_device.h"

namespace {

// Writes a value through a key that stays open, as the program's does, and restarts the device.
void WriteAndRestart(const TemporaryDevice& device, std::FILE* report) {
    platform::DirectoryStore store(device.OpenFiles(), u"\\x.exe", device.OpenRegistry());
    platform::RunLog log("");
    platform::RecordingStore recorder(store, report, log);
    HKEY key = nullptr;
    recorder.RegOpenKeyExW(HKEY_CURRENT_USER, u"\\Key\\", 0, 0, &key);
    const BYTE number[] = {5, 0, 0, 0};
    recorder.RegSetValueExW(key, u"Number", 0, REG_DWORD, number, 4);
    recorder.RegSetValueExW(key, u"Number", 0, REG_DWORD, number, 4);
    if (recorder.KernelIoControl(IOCTL_HAL_REBOOT + 1, nullptr, 0, nullptr, 0, nullptr) == 0) {
        recorder.KernelIoControl(IOCTL_HAL_REBOOT, nullptr, 0, nullptr, 0, nullptr);
    }
    std::_Exit(1);  // not reached
}

TEST(RestartTest, StoresWhatIsPendingAndEndsTheProcess) {
    const TemporaryDevice device;
    const std::string registry = device.path() + "/registry.reg";
    const std::string report = device.path() + "/report";
    WriteFile(registry, "[HKEY_CURRENT_USER\\Key]\n");
    std::FILE* const file = std::fopen(report.c_str(), "we");
    ASSERT_NE(file, nullptr);
    EXPECT_EXIT(WriteAndRestart(device, file), testing::ExitedWithCode(0), "^$");
    std::fclose(file);
    EXPECT_EQ(ReadFile(registry), "[HKEY_CURRENT_USER\\Key]\n\"Number\"=dword:00000005\n");
    EXPECT_EQ(ReadFile(report),
              "wrote [HKCU\\Key] \"Number\": nothing -> 5\n"
              "restarting the device\n");
}

}  // namespace
