#include "tests/support/mounted_device.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

bool EnterMountNamespace() {
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0) {
        return false;
    }
    if (user != 0) {
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    }
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

MountedDevice::~MountedDevice() {
    std::for_each(mounted_.rbegin(), mounted_.rend(),
                  [](const std::string& target) { umount2(target.c_str(), MNT_DETACH); });
}

void MountedDevice::Mount(const std::string& path, const char* options) {
    Make({path + '/'});
    EXPECT_EQ(mount("card", HostPath(path).c_str(), "tmpfs", 0, options), 0);
    IsMounted(path);
}

void MountedDevice::Bind(const std::string& source, const std::string& path) {
    Make({source + '/', path + '/'});
    EXPECT_EQ(mount(HostPath(source).c_str(), HostPath(path).c_str(), nullptr, MS_BIND, nullptr),
              0);
    IsMounted(path);
}

void MountedDevice::Clear() const {
    Entries listing = Listing();
    std::for_each(listing.rbegin(), listing.rend(), [this](const std::string& entry) {
        const std::string path = HostPath(entry.substr(0, entry.find_first_of("=>|")));
        const bool isDirectory = path.back() == '/';
        const bool isMounted =
            std::count(mounted_.begin(), mounted_.end(), path.substr(0, path.size() - 1)) > 0;
        EXPECT_TRUE(isMounted ||
                    unlinkat(AT_FDCWD, path.c_str(), isDirectory ? AT_REMOVEDIR : 0) == 0);
    });
}
