// Moves between volumes, file systems that cannot do everything, and full ones.

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <thread>
#include <tuple>

#include "engine/file_tree.h"
#include "engine/shortcut_cleaning.h"
#include "tests/support/files_alone.h"
#include "tests/support/mounted_device.h"
#include "tests/support/system_calls.h"

namespace {

// A device with a storage card of its own file system.
class MovesOverVolumesTest : public testing::TestWithParam<bool> {
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
        FilesAlone store(device_.OpenFiles());
        const platform::StoreInUse inUse(store);
        MoveTree(source, destination);
    }

    std::string HostPath(const std::string& path) const { return device_.HostPath(path); }

    struct stat Look(const std::string& path) const {
        struct stat status {};
        EXPECT_EQ(lstat(HostPath(path).c_str(), &status), 0);
        return status;
    }

    MountedDevice device_;
};

INSTANTIATE_TEST_SUITE_P(Files, MovesOverVolumesTest, testing::Bool(), [](const auto& each) {
    return each.param ? "Nameless" : "WithReservedNames";
});

TEST_P(MovesOverVolumesTest, FilesMoveToAnotherVolumeAndBack) {
    device_.Make({"A/f=1", "A/s/g=22", "A/link>f", "A/t=new", "Card/B/T=old"});
    chmod(HostPath("A/f").c_str(), 0440);
    chmod(HostPath("A/s").c_str(), 0710);
    const timespec times[] = {{1000, 0}, {2000, 5}};
    ASSERT_EQ(utimensat(AT_FDCWD, HostPath("A/s/g").c_str(), times, 0), 0);
    const bool hasAttribute = setxattr(HostPath("A/s/g").c_str(), "user.note", "n", 1, 0) == 0;
    Move(u"\\A", u"\\card\\B\\");
    // A link is not a file, and stays.
    EXPECT_EQ(device_.Listing(),
              Words("A/ A/link>f A/t=new Card/ Card/B/ Card/B/T=old Card/B/f=1 Card/B/s/ "
                    "Card/B/s/g=22"));
    EXPECT_EQ(Look("Card/B/s/g").st_mtim.tv_sec, 2000);
    EXPECT_EQ(Look("Card/B/s/g").st_mtim.tv_nsec, 5);
    char value = 0;
    EXPECT_EQ(getxattr(HostPath("Card/B/s/g").c_str(), "user.note", &value, 1) == 1, hasAttribute);
    EXPECT_EQ(Look("Card/B/f").st_mode & 0777, 0440U);
    EXPECT_EQ(Look("Card/B/s").st_mode & 0777, 0710U);
    Move(u"\\Card\\B\\", u"\\A");
    EXPECT_EQ(device_.Listing(),
              Words("A/ A/f=1 A/link>f A/s/ A/s/g=22 A/t=new Card/ Card/B/ Card/B/T=old"));
}

TEST_P(MovesOverVolumesTest, MountsBelowTheFirstLevelAreNotEntered) {
    device_.Mount("T/d/mounted");
    device_.Make(Words("T/d/mounted/keep=1 T/d/f=2 Card/g=3 M/x.lnk=5#\\T\\d\\mounted\\x"));
    FilesAlone store(device_.OpenFiles());
    const platform::StoreInUse inUse(store);
    for (const WCHAR* const path : {u"\\T\\", u"\\T\\d\\mounted\\", u"\\Card\\"}) {
        DeleteTree(path, true, true);
    }
    CleanShortcuts(u"\\M");
    EXPECT_EQ(device_.Listing(), Words("Card/ M/ M/x.lnk=5#\\T\\d\\mounted\\x T/ T/d/ T/d/mounted/ "
                                       "T/d/mounted/keep=1"));
}

TEST_P(MovesOverVolumesTest, MovesWorkWithoutFlagsForRenaming) {
    g_calls.renamingFlags = false;
    device_.Make(Words("A/f=1 A/s/g=2 A/x=new B/X=old Card/c/h=3"));
    Move(u"\\A", u"\\B\\");
    Move(u"\\Card\\c", u"\\Card\\");
    g_calls.renamingFlags = true;
    EXPECT_EQ(device_.Listing(), Words("A/ A/x=new B/ B/X=old B/f=1 B/s/ B/s/g=2 Card/ Card/c/ "
                                       "Card/h=3"));
}

TEST_P(MovesOverVolumesTest, OneFileOnTwoPathsStays) {
    device_.Bind("A", "View");
    device_.Make({"A/f=1", "Fuse/"});
    const std::string fuse = "command -v bindfs >/dev/null && bindfs '" + HostPath("A") + "' '" +
                             HostPath("Fuse") + "' 2>/dev/null";
    const bool hasFuse = std::system(fuse.c_str()) == 0;
    if (hasFuse) {
        device_.IsMounted("Fuse");
    }
    for (const WCHAR* const path : {u"\\A", u"\\View", u"\\Fuse"}) {
        Move(path, u"\\View\\");
        Move(path, u"\\A\\");
        Move(path, u"\\Fuse\\");
    }
    EXPECT_EQ(device_.Listing(), Words(hasFuse ? "A/ A/f=1 Card/ Fuse/ Fuse/f=1 View/ View/f=1"
                                               : "A/ A/f=1 Card/ Fuse/ View/ View/f=1"));
}

TEST_P(MovesOverVolumesTest, AMoveThatWasCutOffIsFinishedForACopyOfTheFileAlone) {
    const std::tuple<const char*, timespec, bool> cases[] = {
        {"12", {11, 123456789}, true}, {"12", {11, 123456700}, true},
        {"12", {11, 120000000}, true}, {"12", {11, 0}, true},
        {"12", {10, 0}, true},         {"12", {11, 100000000}, false},
        {"12", {12, 0}, false},        {"13", {11, 0}, false},
        {"123", {11, 0}, false},
    };
    for (const auto& [copied, time, isFinished] : cases) {
        device_.Make({"A/f=12", std::string("Card/f=") + copied});
        const timespec times[][2] = {{{0, 0}, {11, 123456789}}, {{0, 0}, time}};
        utimensat(AT_FDCWD, HostPath("A/f").c_str(), times[0], 0);
        utimensat(AT_FDCWD, HostPath("Card/f").c_str(), times[1], 0);
        Move(u"\\A", u"\\Card\\");
        const std::string copy = std::string(" Card/ Card/f=") + copied;
        EXPECT_EQ(device_.Listing(), Words((isFinished ? "A/" : "A/ A/f=12") + copy));
    }
}

TEST_P(MovesOverVolumesTest, AFileOpenForWritingStays) {
    device_.Make({"A/f=1"});
    const platform::Descriptor file(open(HostPath("A/f").c_str(), O_RDWR));
    FilesAlone store(device_.OpenFiles());
    EXPECT_EQ(store.MoveFileW(u"\\A\\f", u"\\Card\\f"), 0);
    EXPECT_EQ(platform::ErrorCodeOf(store.LastFailure()), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_EQ(device_.Listing(), Words("A/ A/f=1 Card/"));
}

bool WriteNumber(const std::string& path, int number) {
    const platform::Descriptor file(open(path.c_str(), O_WRONLY));
    return file && pwrite(file.get(), &number, sizeof number, 0) > 0;
}

TEST_P(MovesOverVolumesTest, NoWritingIsLostByAMove) {
    const std::string path = HostPath("f");
    FilesAlone store(device_.OpenFiles());
    for (int round = 0; round < 30; ++round) {
        device_.Make({"f=none"});
        std::atomic<bool> isOver = false;
        int last = 0;
        std::thread writer([&] {
            while (!isOver) {
                last += WriteNumber(path, last + 1) ? 1 : 0;
                usleep(static_cast<useconds_t>(last * 7919 % 3000));
            }
        });
        bool isMoved = false;
        for (int tries = 0; tries < 20 && !isMoved; ++tries) {
            isMoved = store.MoveFileW(u"\\f", u"\\Card\\f") != 0;
            usleep(isMoved ? 0 : 200);
        }
        isOver = true;
        writer.join();
        const std::string kept = ReadFile(isMoved ? HostPath("Card/f") : path);
        EXPECT_EQ(kept, last == 0 ? "none"
                                  : std::string(reinterpret_cast<const char*>(&last), sizeof last));
        std::remove(HostPath("Card/f").c_str());
    }
}

TEST_P(MovesOverVolumesTest, MovedDirectoriesAreNeverOpenToMore) {
    for (const mode_t mode : {0700U, 0750U, 01777U, 0500U}) {
        device_.Make({"A/d/f=1", "A/given up/", "Card/old/"});
        chmod(HostPath("A/d").c_str(), mode);
        chmod(HostPath("Card/old").c_str(), 0711);
        const timespec times[] = {{1000, 0}, {2000, 5}};
        utimensat(AT_FDCWD, HostPath("A/d").c_str(), times, 0);
        FilesAlone store(device_.OpenFiles());
        store.DirectoryMoves(u"\\A", u"\\Card\\old");
        EXPECT_EQ(store.CreateDirectoryW(u"\\Card\\old", nullptr), 0);
        store.DirectoryMoves(u"\\A\\d", u"\\Card\\old\\d");
        EXPECT_NE(store.CreateDirectoryW(u"\\Card\\old\\d", nullptr), 0);
        EXPECT_EQ(Look("Card/old/d").st_mode & 07777, 0700U);
        store.DirectoryMoves(u"\\A\\given up", u"\\Card\\old\\given up");
        EXPECT_NE(store.MoveFileW(u"\\A\\d\\f", u"\\Card\\old\\d\\f"), 0);
        store.DirectoryMoved(u"\\A\\d", u"\\Card\\old\\d");
        store.DirectoryMoved(u"\\A", u"\\Card\\old");
        EXPECT_EQ(Look("Card/old/d").st_mode & 07777, mode);
        EXPECT_EQ(Look("Card/old/d").st_mtim.tv_nsec, 5);
        EXPECT_EQ(Look("Card/old").st_mode & 07777, 0711U);
        std::filesystem::remove_all(HostPath("Card/old"));
    }
}

// Files set aside, the records of their names, and what the next start makes of them.
TEST_P(MovesOverVolumesTest, FilesSetAsideGetTheirNamesBackOrStay) {
    const std::string aside = ".fennelbright-aside-0123456789abcdef";
    const std::string back = ".fennelbright-back-0123456789abcdef=";
    const std::string record = back + "ec4ee03d1bd9b4b0 \\A\\f";
    const std::string outwards = back + "1de9d36713cf370d \\link\\f";
    const std::string nowhere = back + "45fb8ee612bc16ef \\none\\f";
    const std::string upwards = back + "64b085d653be1d92 \\A\\..";
    const std::string unpublished = ".fennelbright-new-0123456789abcdef=half";
    const std::tuple<Entries, Entries, long> cases[] = {
        {{aside + "=1", record}, {"A/", "A/f=1"}, 0},
        {{"A/f=2", aside + "=1", record}, {aside + "=1", record, "A/", "A/f=2"}, 1},
        {{aside + "=1"}, {aside + "=1", "A/"}, 1},
        {{record}, {"A/"}, 0},
        {{back}, {"A/"}, 0},
        {{aside + "=1", back + "ec4ee03d1bd9b4b0 \\A\\"}, {}, 1},
        {{aside + "=1", outwards, "link>A"}, {}, 1},
        {{aside + "=1", nowhere}, {}, 1},
        {{aside + "=1", upwards}, {}, 1},
        {{aside + "/", record}, {}, 1},
        {{"Card/" + aside + "=1", "Card/" + record}, {}, 1},  // of another volume
        {{unpublished, "Card/" + unpublished}, {"A/"}, 0},
        {{"A/" + unpublished}, {"A/", "A/" + unpublished}, 0},
    };
    for (const auto& [before, expected, lines] : cases) {
        device_.Make(before);
        device_.Make({"A/"});
        const Entries unchanged = device_.Listing();
        Entries after = expected;
        after.emplace_back("Card/");
        testing::internal::CaptureStderr();
        FilesAlone(device_.OpenFiles()).RecoverFromKilledRuns();
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), lines) << said;
        EXPECT_EQ(device_.Listing(), expected.empty() ? unchanged : after) << before[0];
        device_.Clear();
    }
}

}  // namespace
