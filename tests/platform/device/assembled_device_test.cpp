// The registry and the file tree of one device: what is stored, and when.

#include "platform/device/assembled_device.h"

#include <fcntl.h>

#include <filesystem>

#include "platform/device/hard_reset.h"
#include "platform/diagnostics/run_log.h"
#include "platform/display/registry_saving_windows.h"
#include "platform/report/report_lines.h"
#include "platform/report/reporting_store.h"
#include "tests/support/apply_device.h"
#include "tests/support/mounted_device.h"

namespace {

constexpr char kKey[] = "[HKEY_CURRENT_USER\\Key]\n";
const std::string kKeyEntry = std::string("../registry.reg=") + kKey;
constexpr char kWritten[] = "[HKEY_CURRENT_USER\\Key]\n\"Number\"=dword:00000005\n";

LONG WriteNumber(platform::DeviceStore& store) {
    HKEY key = nullptr;
    store.RegOpenKeyExW(HKEY_CURRENT_USER, u"\\Key\\", 0, 0, &key);
    const BYTE number[] = {5, 0, 0, 0};
    const LONG result = store.RegSetValueExW(key, u"Number", 0, REG_DWORD, number, 4);
    store.RegCloseKey(key);
    return result;
}

// A restart that cannot erase the device comes back, and the one after it is a plain one.
void WriteAndErase(const TemporaryDevice& device, bool isByHalves = false) {
    platform::AssembledDevice store(device.OpenFiles(), u"\\x.exe", device.OpenRegistry());
    if (isByHalves) {
        store.KeepFromErasing();
    }
    platform::RunLog log("");
    platform::ReportLines lines(stderr);
    platform::ReportingStore recorder(store, {&lines}, log);
    WriteNumber(recorder);
    WriteNumber(recorder);
    recorder.SetCleanRebootFlag();
    recorder.KernelIoControl(IOCTL_HAL_REBOOT, nullptr, 0, nullptr, 0, nullptr);
    recorder.KernelIoControl(IOCTL_HAL_REBOOT, nullptr, 0, nullptr, 0, nullptr);
}

TEST(AssembledDeviceTest, AnErasingRestartKeepsEverythingInItsFolderOrComesBack) {
    const TemporaryDevice device({"../tree/f=1"});
    std::filesystem::remove(device.files());
    std::filesystem::create_symlink("tree", device.files());
    WriteFile(device.registry(), kKey);
    EXPECT_EXIT(WriteAndErase(device), testing::ExitedWithCode(0),
                "erasing the device\nfennelbright: not erased, and not restarted: cannot erase the "
                "device: .*\nnot restarted .*\nrestarting the device\n$");
    std::filesystem::remove(device.files());
    std::filesystem::rename(device.path() + "/tree", device.files());
    EXPECT_EXIT(WriteAndErase(device, true), testing::ExitedWithCode(0),
                "erasing the device\nfennelbright: not erased, .* were named one by one, .*\nnot "
                "restarted .*\nrestarting the device\n$");
    EXPECT_EQ(device.Listing(), Entries{"f=1"});
    WriteFile(device.registry(), kKey);
    EXPECT_EXIT(WriteAndErase(device), testing::ExitedWithCode(0),
                "^wrote .HKCU.Key. \"Number\": nothing -> 5\nerasing the device\nfennelbright: "
                "erased; the old files and registry are in erased-20..-..-.. in the device "
                "directory\n$");
    const std::string folder = device.path() + "/erased-" + platform::Today();
    EXPECT_EQ(ReadFile(folder + "/registry.reg"), kWritten);
    EXPECT_EQ(ReadFile(folder + "/files/f"), "1");
    EXPECT_EQ(device.Listing(), Entries());
}

// What stores the registry, and what leaves it for later because it changes nothing.
TEST(AssembledDeviceTest, TheRegistryIsStoredBeforeTheNextChangeOfTheTree) {
    using Operation = void (*)(platform::DeviceStore&, platform::WindowSystem&);
    const std::pair<Operation, bool> cases[] = {
        {[](auto& store, auto& /*windows*/) { store.DeleteFileW(u"\\f"); }, true},
        {[](auto& store, auto& /*windows*/) { store.DeleteFileW(u"\\none"); }, false},
        {[](auto& store, auto& /*windows*/) { store.RemoveDirectoryW(u"\\d"); }, true},
        {[](auto& store, auto& /*windows*/) { store.CreateDirectoryW(u"\\new", nullptr); }, true},
        {[](auto& store, auto& /*windows*/) { store.CreateDirectoryW(u"\\D", nullptr); }, false},
        {[](auto& store, auto& /*windows*/) { store.MoveFileW(u"\\f", u"\\g"); }, true},
        {[](auto& store, auto& /*windows*/) { store.SHCreateShortcut(u"\\s", u"\\f"); }, true},
        {[](auto& store, auto& /*windows*/) { std::fclose(store._wfopen(u"\\f", u"rb")); }, false},
        {[](auto& store, auto& /*windows*/) { std::fclose(store._wfopen(u"\\f", u"wb")); }, true},
        {[](auto& /*store*/, auto& windows) { windows.MessageBoxW(nullptr, u"", u"", MB_OK); },
         true},
        {[](auto& /*store*/, auto& windows) { windows.GetMessageW(nullptr, nullptr, 0, 0); }, true},
    };
    for (const auto& [operation, stores] : cases) {
        const TemporaryDevice device({"f=1", "d/", kKeyEntry});
        platform::RunLog log("");
        platform::AssembledDevice store(device.OpenFiles(), u"", device.OpenRegistry());
        CollectedBoxes boxes;
        platform::RegistrySavingWindows windows(boxes, store, log);
        ASSERT_EQ(WriteNumber(store), ERROR_SUCCESS);
        EXPECT_EQ(ReadFile(device.registry()), kKey);
        operation(store, windows);
        EXPECT_EQ(ReadFile(device.registry()), stores ? kWritten : kKey)
            << &operation - &cases[0].first;
    }
}

// Where there is no room for one more registry nothing moves; deleting makes room.
TEST(AssembledDeviceTest, NothingMovesWithoutRoomForTheRegistry) {
    if (!EnterMountNamespace()) {
        GTEST_SKIP() << "this user may not mount anything";
    }
    MountedDevice outer;
    outer.Mount("Card", "size=64k");
    const TemporaryDevice device({"A/f=1", "A/d/", "B/", "filler=" + std::string(40000, 'x'),
                                  kKeyEntry + std::string(8000, ';')},
                                 outer.HostPath("Card"));
    platform::RunLog log("");
    const platform::LogInUse logInUse(log);
    platform::AssembledDevice store(device.OpenFiles(), u"", device.OpenRegistry());
    EXPECT_NE(store.CreateDirectoryW(u"\\App", nullptr), 0) << "for settings, outside of the steps";
    log.BeginStep(12);
    testing::internal::CaptureStderr();
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(store.MoveFileW(u"\\A\\f", u"\\B\\f"), 0);
        EXPECT_EQ(store.CreateDirectoryW(u"\\B\\d", nullptr), 0);
        EXPECT_EQ(platform::ErrorCodeOf(store.LastFailure()), DWORD{ERROR_NO_SYSTEM_RESOURCES});
    }
    const std::string lines = testing::internal::GetCapturedStderr();
    EXPECT_EQ(lines.find("nothing is moved"), lines.rfind("nothing is moved")) << lines;
    EXPECT_EQ(log.ExitCode(false), 74);
    EXPECT_NE(store.DeleteFileW(u"\\filler"), 0);
    EXPECT_EQ(store.MoveFileW(u"\\A\\f", u"\\B\\f"), 0)
        << "the step that was refused stays refused";
    log.BeginStep(14);
    EXPECT_NE(store.MoveFileW(u"\\A\\f", u"\\B\\f"), 0);
    EXPECT_EQ(WriteNumber(store), ERROR_SUCCESS);
    EXPECT_TRUE(store.StoreRegistry().has_value());
}

// What another program has stored meanwhile stays, and what it has deleted is not reported as done.
TEST(AssembledDeviceTest, AChangeWhoseKeyAnotherProgramDeletesIsNotReportedAsDone) {
    const TemporaryDevice device({kKeyEntry});
    platform::RunLog log("");
    const platform::LogInUse logInUse(log);
    platform::AssembledDevice store(device.OpenFiles(), u"", device.OpenRegistry());
    platform::ReportLines lines(stdout);
    platform::ReportingStore recorder(store, {&lines}, log);
    ASSERT_EQ(WriteNumber(recorder), ERROR_SUCCESS);
    WriteFile(device.registry(), "; another editor\n");
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_FALSE(recorder.StoreRegistry().has_value());
    EXPECT_NE(testing::internal::GetCapturedStderr().find("another program"), std::string::npos);
    EXPECT_EQ(ReadFile(device.registry()), "; another editor\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "not written [HKCU\\Key] \"Number\" (another program has deleted its key)\n");
    EXPECT_EQ(log.ExitCode(false), 74);
}

}  // namespace
