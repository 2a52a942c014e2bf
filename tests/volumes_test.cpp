// Moves between volumes, file systems that cannot do everything, and full ones.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <fstream>
#include <string>
#include <vector>

#include "engine/file_tree.h"
#include "platform/file_store.h"
#include "tests/temporary_device.h"

namespace {

bool g_namelessFilesAllowed = true;
bool g_renamingFlagsKnown = true;

}  // namespace

// Stands in front of the C library's function, for file systems that know no files without names.
extern "C" int openat(int directory, const char* path, int flags, ...) {
    if ((flags & O_TMPFILE) == O_TMPFILE && !g_namelessFilesAllowed) {
        errno = EOPNOTSUPP;
        return -1;
    }
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return static_cast<int>(syscall(SYS_openat, directory, path, flags, mode));
}

// The same for file systems that know no renaming without replacing.
extern "C" int renameat2(int fromDirectory, const char* from, int toDirectory, const char* to,
                         unsigned flags) noexcept {
    if (flags != 0 && !g_renamingFlagsKnown) {
        errno = EINVAL;
        return -1;
    }
    return static_cast<int>(syscall(SYS_renameat2, fromDirectory, from, toDirectory, to, flags));
}

namespace {

using Entries = std::vector<std::string>;

// Mounts of this process alone. As an ordinary user it becomes root of a user namespace first.
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

// A device with a storage card of its own file system.
class VolumesTest : public testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        g_namelessFilesAllowed = GetParam();
        if (!EnterMountNamespace()) {
            GTEST_SKIP() << "this user may not mount anything";
        }
        Mount("Card", "size=512k");
    }
    void TearDown() override {
        g_namelessFilesAllowed = true;
        for (const std::string& target : mounted_) {
            umount2(target.c_str(), MNT_DETACH);
        }
    }

    void Mount(const std::string& path, const char* options) {
        device_.Make({path + '/'});
        const std::string target = device_.files() + '/' + path;
        ASSERT_EQ(mount("card", target.c_str(), "tmpfs", 0, options), 0);
        mounted_.push_back(target);
    }

    void Move(const std::u16string& source, const std::u16string& destination) {
        platform::FileStore store(device_.OpenFiles(), u"");
        const platform::StoreInUse inUse(store);
        MoveTree(source.c_str(), destination.c_str());
    }

    std::string HostPath(const std::string& path) const { return device_.files() + '/' + path; }

    TemporaryDevice device_;

  private:
    std::vector<std::string> mounted_;
};

INSTANTIATE_TEST_SUITE_P(Files, VolumesTest, testing::Bool(), [](const auto& each) {
    return each.param ? "Nameless" : "WithReservedNames";
});

TEST_P(VolumesTest, FilesMoveToAnotherVolumeAndBack) {
    device_.Make({"A/f=1", "A/s/g=22", "A/link>f", "Card/B/"});
    chmod(HostPath("A/f").c_str(), 0440);
    const timespec times[] = {{1000, 0}, {2000, 5}};
    ASSERT_EQ(utimensat(AT_FDCWD, HostPath("A/s/g").c_str(), times, 0), 0);
    const bool hasAttribute = setxattr(HostPath("A/s/g").c_str(), "user.note", "n", 1, 0) == 0;
    Move(u"\\A", u"\\card\\B\\");
    // A link is not a file, and stays.
    EXPECT_EQ(device_.Listing(), (Entries{"A/", "A/link>f", "Card/", "Card/B/", "Card/B/f=1",
                                          "Card/B/s/", "Card/B/s/g=22"}));
    struct stat moved {};
    ASSERT_EQ(stat(HostPath("Card/B/s/g").c_str(), &moved), 0);
    EXPECT_EQ(moved.st_mtim.tv_sec, 2000);
    EXPECT_EQ(moved.st_mtim.tv_nsec, 5);
    char value = 0;
    if (hasAttribute) {
        EXPECT_EQ(getxattr(HostPath("Card/B/s/g").c_str(), "user.note", &value, 1), 1);
    }
    ASSERT_EQ(stat(HostPath("Card/B/f").c_str(), &moved), 0);
    EXPECT_EQ(moved.st_mode & 0777, 0440U);
    Move(u"\\Card\\B\\", u"\\A");
    EXPECT_EQ(device_.Listing(),
              (Entries{"A/", "A/f=1", "A/link>f", "A/s/", "A/s/g=22", "Card/", "Card/B/"}));
}

TEST_P(VolumesTest, AFullVolumeLosesNothing) {
    const std::string large(300000, 'x');
    device_.Make({"A/1=" + large, "A/2=" + large, "A/3=" + large, "Card/"});
    Move(u"\\A", u"\\Card\\");
    std::size_t files = 0;
    for (const std::string& entry : device_.Listing()) {
        files += entry.ends_with(large) ? 1 : 0;
        EXPECT_TRUE(entry.ends_with('/') || entry.ends_with('=' + large));
    }
    EXPECT_EQ(files, 3U);
}

TEST_P(VolumesTest, TakenNamesOnAnotherVolumeAreKept) {
    device_.Make({"A/f=new", "A/g=2", "Card/F=old"});
    Move(u"\\A", u"\\Card\\");
    EXPECT_EQ(device_.Listing(), (Entries{"A/", "A/f=new", "Card/", "Card/F=old", "Card/g=2"}));
}

TEST_P(VolumesTest, AFullDiskLeavesTheOldContent) {
    device_.Make({"Card/file=old", "Card/filler=" + std::string(400000, 'x')});
    platform::FileStore store(device_.OpenFiles(), u"");
    const platform::StoreInUse inUse(store);
    for (const WCHAR* const path : {u"\\Card\\file", u"\\Card\\new"}) {
        std::FILE* const file = _wfopen(path, u"wb");
        ASSERT_NE(file, nullptr);
        const std::string content(300000, 'y');
        std::fwrite(content.data(), 1, content.size(), file);
        EXPECT_NE(std::fclose(file), 0);
    }
    EXPECT_EQ(ReadFile(HostPath("Card/file")), "old");
    EXPECT_EQ(device_.Listing().size(), 3U);
}

TEST_P(VolumesTest, StreamsReplaceAndMakeFilesOnAnyVolume) {
    device_.Make({"Card/d/file=old"});
    platform::FileStore store(device_.OpenFiles(), u"");
    const platform::StoreInUse inUse(store);
    for (const WCHAR* const path : {u"\\Card\\D\\FILE", u"\\Card\\new", u"\\new"}) {
        std::FILE* const file = _wfopen(path, u"wb");
        ASSERT_NE(file, nullptr);
        std::fputs("content", file);
        EXPECT_EQ(std::fclose(file), 0);
    }
    EXPECT_EQ(device_.Listing(), (Entries{"Card/", "Card/d/", "Card/d/file=content",
                                          "Card/new=content", "new=content"}));
}

TEST_P(VolumesTest, MountsBelowTheFirstLevelAreNotEntered) {
    Mount("T/d/mounted", "");
    device_.Make({"T/d/mounted/keep=1", "T/d/f=2", "Card/g=3"});
    platform::FileStore store(device_.OpenFiles(), u"");
    const platform::StoreInUse inUse(store);
    DeleteTree(u"\\T\\", true, true);
    DeleteTree(u"\\T\\d\\mounted\\", true, true);
    DeleteTree(u"\\Card\\", true, true);
    EXPECT_EQ(device_.Listing(),
              (Entries{"Card/", "T/", "T/d/", "T/d/mounted/", "T/d/mounted/keep=1"}));
}

TEST_P(VolumesTest, MovesNeedNoHelpOfTheFileSystem) {
    g_renamingFlagsKnown = false;
    device_.Make({"A/f=1", "A/s/g=2", "A/x=new", "B/X=old", "Card/c/h=3"});
    Move(u"\\A", u"\\B\\");
    Move(u"\\Card\\c", u"\\Card\\");
    g_renamingFlagsKnown = true;
    EXPECT_EQ(device_.Listing(), (Entries{"A/", "A/x=new", "B/", "B/X=old", "B/f=1", "B/s/",
                                          "B/s/g=2", "Card/", "Card/c/", "Card/h=3"}));
}

TEST_P(VolumesTest, WhatWasLeftUnpublishedOnAVolumeGoes) {
    const std::string left = ".fennelbright-new-0123456789abcdef";
    device_.Make({"Card/" + left + "=half", "Card/sub/" + left + "=not ours"});
    const platform::FileStore store(device_.OpenFiles(), u"");
    EXPECT_EQ(device_.Listing(), (Entries{"Card/", "Card/sub/", "Card/sub/" + left + "=not ours"}));
}

}  // namespace
