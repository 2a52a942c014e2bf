#include "platform/device/hard_reset.h"

#include <algorithm>
#include <filesystem>

#include "platform/device/device_directory.h"
#include "tests/support/mounted_device.h"
#include "tests/support/system_calls.h"

namespace {

namespace fs = std::filesystem;

enum Ended { kErased, kNotErased };

int EraseWithFault(const std::string& path, int number, int error) {
    return RunWithFault({.faultAt = number, .error = error}, [&path] {
        const auto device = platform::OpenDeviceDirectory(path.c_str());
        return platform::EraseDevice(device->directory.get(), "1") ? kErased : kNotErased;
    });
}

bool OpensAsDevice(const std::string& path) {
    const auto device = platform::OpenDeviceDirectory(path.c_str());
    return device && platform::Registry::Open(device->directory.get());
}

// What is there at first, and what has to be there in the end. The first name is taken.
struct Case {
    Entries before;
    Entries after;
};

const Case kCases[] = {{{"erased-1/", "files/", "files/f=1", "last-run.txt=\n", "registry.reg=\n"},
                        {"erased-1-2/", "erased-1-2/files/", "erased-1-2/files/f=1",
                         "erased-1-2/registry.reg=\n", "erased-1/", "files/", "last-run.txt=\n"}},
                       {{"erased-1/", "files/", "files/f=1"},
                        {"erased-1-2/", "erased-1-2/files/", "erased-1-2/files/f=1",
                         "erased-1-2/registry.reg=", "erased-1/", "files/"}},
                       {{"erased-1/", "registry.reg=\n"},
                        {"erased-1-2/", "erased-1-2/registry.reg=\n", "erased-1/", "files/"}}};

bool Has(const Entries& sorted, const std::string& entry) {
    return std::ranges::binary_search(sorted, entry);
}

// Returns whether there was a call of that number.
bool ExpectNothingLost(const Case& each, int number, int error) {
    const TemporaryDevice device;
    for (const std::string& entry : each.before) {
        device.Make({"../" + entry});
    }
    if (!Has(each.before, "files/")) {
        fs::remove(device.files());
    }
    const int ended = EraseWithFault(device.path(), number, error);
    const Entries left = ListingOf(device.path());
    const std::string folder = device.path() + "/erased-1-2";
    EXPECT_TRUE(OpensAsDevice(device.path()));
    EXPECT_TRUE(!fs::exists(folder) || fs::is_empty(folder) || OpensAsDevice(folder));
    for (const std::string& entry : each.before) {
        EXPECT_TRUE(Has(left, entry) || Has(left, "erased-1-2/" + entry)) << entry;
    }
    EXPECT_TRUE(ended == kKilled || left == (ended == kNotErased ? each.before : each.after));
    return ended != kNoSuchCall;
}

TEST(HardResetTest, AFaultAtAnyCallLeavesTwoDevices) {
    for (const Case& each : kCases) {
        for (const int error : {0, EIO}) {
            int number = 1;
            while (ExpectNothingLost(each, number, error) && !HasFailure()) {
                ++number;
            }
            EXPECT_GT(number, 8);
        }
    }
}

TEST(HardResetTest, ADeviceWithACardStaysAsItIs) {
    if (!EnterMountNamespace()) {
        GTEST_SKIP() << "this user may not mount anything";
    }
    for (const char* const place : {"Card", "."}) {
        MountedDevice device;
        device.Mount(place);
        const Entries before = ListingOf(device.path());
        EXPECT_EQ(EraseWithFault(device.path(), 0, 0), kNotErased) << place;
        EXPECT_EQ(ListingOf(device.path()), before);
    }
}

}  // namespace
