#include <fcntl.h>
#include <gtest/gtest.h>

#include <array>

#include "platform/directory_store.h"
#include "platform/recording_store.h"
#include "tests/temporary_device.h"

namespace {

constexpr char kKey[] = "[HKEY_CURRENT_USER\\Key]\n";

// Writes a value through a key that stays open, as the program's does, and restarts the device.
void WriteAndRestart(const TemporaryDevice& device, std::FILE* report) {
    const platform::Descriptor directory(
        open(device.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::string error;
    platform::DirectoryStore store(device.OpenFiles(), u"\\x.exe",
                                   platform::Registry::Open(directory.get(), error));
    platform::RecordingStore recorder(store, report);
    HKEY key = nullptr;
    recorder.RegOpenKeyExW(HKEY_CURRENT_USER, u"\\Key\\", 0, 0, &key);
    const std::array<BYTE, 4> number = {5, 0, 0, 0};
    recorder.RegSetValueExW(key, u"Number", 0, REG_DWORD, number.data(), 4);
    recorder.RegSetValueExW(key, u"Number", 0, REG_DWORD, number.data(), 4);
    if (recorder.KernelIoControl(IOCTL_HAL_REBOOT + 1, nullptr, 0, nullptr, 0, nullptr) == 0) {
        recorder.KernelIoControl(IOCTL_HAL_REBOOT, nullptr, 0, nullptr, 0, nullptr);
    }
    std::_Exit(1);  // not reached
}

TEST(RestartTest, StoresWhatIsPendingAndEndsTheProcess) {
    const TemporaryDevice device;
    WriteFile(device.path() + "/registry.reg", kKey);
    const std::string report = device.path() + "/report";
    std::FILE* const file = std::fopen(report.c_str(), "we");
    ASSERT_NE(file, nullptr);
    EXPECT_EXIT(WriteAndRestart(device, file), testing::ExitedWithCode(0), "^$");
    std::fclose(file);
    EXPECT_EQ(ReadFile(device.path() + "/registry.reg"),
              std::string(kKey) + "\"Number\"=dword:00000005\n");
    EXPECT_EQ(ReadFile(report),
              "wrote [HKCU\\Key] \"Number\": nothing -> 5\n"
              "restarting the device\n"
              "total: 0 files deleted (0 bytes), 0 entries moved, 0 directories made, "
              "0 directories removed, 0 shortcuts made, 1 value written, 0 keys deleted\n");
}

}  // namespace
