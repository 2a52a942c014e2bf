#include "platform/erasing.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <set>

#include "platform/device_directory.h"
#include "tests/mounted_device.h"
#include "tests/system_calls.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kRegistry = "[HKEY_CURRENT_USER\\Key]\n";

// What is in a directory, however deep: "path" or "path=content".
std::set<std::string> Everything(const std::string& path) {
    std::set<std::string> found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path)) {
        const std::string name = fs::relative(entry.path(), path);
        found.insert(entry.is_directory() ? name : name + '=' + ReadFile(entry.path()));
    }
    return found;
}

void ExpectDevice(const std::string& path) {
    const auto device = platform::OpenDeviceDirectory(path.c_str());
    ASSERT_TRUE(device.has_value()) << path;
    EXPECT_TRUE(platform::Registry::Open(device->directory.get()).has_value()) << path;
}

// Erases with a fault at one system call: -1 where there were not so many calls, else 0 where it
// was erased all the same, 1 where it was not and 2 where it was killed.
int EraseWithFault(const std::string& path, int number, int error) {
    const pid_t child = fork();
    if (child == 0) {
        g_calls.faultAt = number;
        g_calls.error = error;
        const auto device = platform::OpenDeviceDirectory(path.c_str());
        const auto erased = platform::EraseDevice(device->directory.get(), "2026-11-23");
        _exit(g_calls.faultAt > 0 ? 3 : erased ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    if (WIFSIGNALED(status)) {
        EXPECT_EQ(WTERMSIG(status), SIGKILL);
        return 2;
    }
    return WEXITSTATUS(status) == 3 ? -1 : WEXITSTATUS(status);
}

struct Case {
    bool hasFiles;
    bool hasRegistry;
    std::set<std::string> after;
};

const Case kCases[] = {
    {true,
     true,
     {"erased-2026-11-23", "erased-2026-11-23-2", "erased-2026-11-23-2/files",
      "erased-2026-11-23-2/files/A", "erased-2026-11-23-2/files/A/f=1",
      std::string("erased-2026-11-23-2/registry.reg=") + kRegistry, "files"}},
    {true,
     false,
     {"erased-2026-11-23", "erased-2026-11-23-2", "erased-2026-11-23-2/files",
      "erased-2026-11-23-2/files/A", "erased-2026-11-23-2/files/A/f=1",
      "erased-2026-11-23-2/registry.reg=", "files"}},
    {false,
     true,
     {"erased-2026-11-23", "erased-2026-11-23-2",
      std::string("erased-2026-11-23-2/registry.reg=") + kRegistry, "files"}},
};

// Returns whether there was a call of that number.
bool ExpectNothingLost(const Case& each, int number, int error) {
    const TemporaryDevice device;
    fs::create_directory(device.path() + "/erased-2026-11-23");
    device.Make(each.hasFiles ? Entries{"A/f=1"} : Entries());
    if (!each.hasFiles) {
        fs::remove(device.files());
    }
    if (each.hasRegistry) {
        WriteFile(device.path() + "/registry.reg", kRegistry);
    }
    const std::set<std::string> before = Everything(device.path());
    const int ended = EraseWithFault(device.path(), number, error);
    const std::set<std::string> after = Everything(device.path());
    ExpectDevice(device.path());
    const std::string folder = device.path() + "/erased-2026-11-23-2";
    if (fs::exists(folder) && !fs::is_empty(folder)) {
        ExpectDevice(folder);
    }
    for (const std::string& entry : before) {
        EXPECT_TRUE(after.contains(entry) || after.contains("erased-2026-11-23-2/" + entry))
            << entry;
    }
    EXPECT_TRUE(ended > 0 || after == each.after);
    EXPECT_TRUE(ended != 1 || after == before);
    return ended >= 0;
}

TEST(ErasingTest, AFaultAtAnyCallLeavesTwoDevices) {
    for (const Case& each : kCases) {
        for (const int error : {0, EIO}) {
            int number = 1;
            while (ExpectNothingLost(each, number, error) && !HasFailure()) {
                SCOPED_TRACE(++number);
            }
            EXPECT_GT(number, 8);
        }
    }
}

TEST(ErasingTest, ADeviceWithACardStaysAsItIs) {
    if (!EnterMountNamespace()) {
        GTEST_SKIP() << "this user may not mount anything";
    }
    for (const char* const place : {"Card", "."}) {
        MountedDevice device;
        device.Mount(place);
        const std::set<std::string> before = Everything(device.path());
        EXPECT_EQ(EraseWithFault(device.path(), 0, 0), 1) << place;
        EXPECT_EQ(Everything(device.path()), before);
    }
}

}  // namespace
