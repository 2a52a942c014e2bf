// Moves between volumes, file systems that cannot do everything, and full ones.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "engine/file_tree.h"
#include "engine/shortcut_cleaning.h"
#include "platform/file_store.h"
#include "tests/mounted_device.h"
#include "tests/system_calls.h"

namespace {

// A device with a storage card of its own file system.
class VolumesTest : public testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        if (!EnterMountNamespace()) {
            GTEST_SKIP() << "this user may not mount anything";
        }
        g_calls = {};
        g_calls.namelessFiles = GetParam();
        device_.Mount("Card", "size=512k");
    }
    void TearDown() override { g_calls = {}; }

    void Move(const WCHAR* source, const WCHAR* destination) {
        platform::FileStore store(device_.OpenFiles(), u"");
        const platform::StoreInUse inUse(store);
        MoveTree(source, destination);
    }

    // The results of closing these files, each with this content.
    std::vector<int> Write(const std::vector<const WCHAR*>& paths, const std::string& content) {
        platform::FileStore store(device_.OpenFiles(), u"");
        const platform::StoreInUse inUse(store);
        std::vector<int> results;
        for (const WCHAR* const path : paths) {
            std::FILE* const file = _wfopen(path, u"wb");
            std::fputs(content.c_str(), file);
            results.push_back(std::fclose(file));
        }
        return results;
    }

    std::string HostPath(const std::string& path) const { return device_.HostPath(path); }

    MountedDevice device_;
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
    EXPECT_EQ(device_.Listing(),
              Words("A/ A/link>f Card/ Card/B/ Card/B/f=1 Card/B/s/ Card/B/s/g=22"));
    struct stat moved {};
    ASSERT_EQ(stat(HostPath("Card/B/s/g").c_str(), &moved), 0);
    EXPECT_EQ(moved.st_mtim.tv_sec, 2000);
    EXPECT_EQ(moved.st_mtim.tv_nsec, 5);
    char value = 0;
    EXPECT_EQ(getxattr(HostPath("Card/B/s/g").c_str(), "user.note", &value, 1) == 1, hasAttribute);
    ASSERT_EQ(stat(HostPath("Card/B/f").c_str(), &moved), 0);
    EXPECT_EQ(moved.st_mode & 0777, 0440U);
    Move(u"\\Card\\B\\", u"\\A");
    EXPECT_EQ(device_.Listing(), Words("A/ A/f=1 A/link>f A/s/ A/s/g=22 Card/ Card/B/"));
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
    device_.Make(Words("A/f=new A/g=2 Card/F=old"));
    Move(u"\\A", u"\\Card\\");
    EXPECT_EQ(device_.Listing(), Words("A/ A/f=new Card/ Card/F=old Card/g=2"));
}

TEST_P(VolumesTest, AFullDiskLeavesTheOldContent) {
    device_.Make({"Card/file=old", "Card/filler=" + std::string(400000, 'x')});
    EXPECT_EQ(Write({u"\\Card\\file", u"\\Card\\new"}, std::string(300000, 'y')),
              (std::vector<int>{EOF, EOF}));
    EXPECT_EQ(ReadFile(HostPath("Card/file")), "old");
    EXPECT_EQ(device_.Listing().size(), 3U);
}

TEST_P(VolumesTest, StreamsReplaceAndMakeFilesOnAnyVolume) {
    device_.Make({"Card/d/file=old"});
    EXPECT_EQ(Write({u"\\Card\\D\\FILE", u"\\Card\\new", u"\\new"}, "x"), std::vector<int>(3));
    EXPECT_EQ(device_.Listing(), Words("Card/ Card/d/ Card/d/file=x Card/new=x new=x"));
}

TEST_P(VolumesTest, MountsBelowTheFirstLevelAreNotEntered) {
    device_.Mount("T/d/mounted");
    device_.Make(Words("T/d/mounted/keep=1 T/d/f=2 Card/g=3"));
    platform::FileStore store(device_.OpenFiles(), u"");
    const platform::StoreInUse inUse(store);
    for (const WCHAR* const path : {u"\\T\\", u"\\T\\d\\mounted\\", u"\\Card\\"}) {
        DeleteTree(path, true, true);
    }
    EXPECT_EQ(device_.Listing(), Words("Card/ T/ T/d/ T/d/mounted/ T/d/mounted/keep=1"));
}

TEST_P(VolumesTest, ShortcutsIntoMountsThatAreNotEnteredStay) {
    device_.Mount("T/mounted");
    const Entries files = {"Card/", "M/", "M/x.lnk=5#\\T\\mounted\\x", "T/", "T/mounted/"};
    device_.Make(files);
    platform::FileStore store(device_.OpenFiles(), u"");
    const platform::StoreInUse inUse(store);
    CleanShortcuts(u"\\M");
    EXPECT_EQ(device_.Listing(), files);
}

TEST_P(VolumesTest, MovesNeedNoHelpOfTheFileSystem) {
    g_calls.renamingFlags = false;
    device_.Make(Words("A/f=1 A/s/g=2 A/x=new B/X=old Card/c/h=3"));
    Move(u"\\A", u"\\B\\");
    Move(u"\\Card\\c", u"\\Card\\");
    g_calls.renamingFlags = true;
    EXPECT_EQ(device_.Listing(), Words("A/ A/x=new B/ B/X=old B/f=1 B/s/ B/s/g=2 Card/ Card/c/ "
                                       "Card/h=3"));
}

TEST_P(VolumesTest, WhatWasLeftUnpublishedOnAVolumeGoes) {
    const std::string left = ".fennelbright-new-0123456789abcdef";
    device_.Make({"Card/" + left + "=half", "Card/sub/" + left + "=other"});
    platform::FileStore(device_.OpenFiles(), u"").ClearUp();
    EXPECT_EQ(device_.Listing(), (Entries{"Card/", "Card/sub/", "Card/sub/" + left + "=other"}));
}

}  // namespace
