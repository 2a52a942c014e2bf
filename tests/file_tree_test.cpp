#include "engine/file_tree.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "engine/apply_sequence.h"
#include "platform/file_store.h"
#include "platform/host_text.h"
#include "tests/failing_store.h"
#include "tests/temporary_device.h"

namespace {

using Entries = std::vector<std::string>;

Entries Delete(const Entries& before, const std::u16string& directory, bool recurse,
               bool removeDirectories) {
    const TemporaryDevice device;
    device.Make(before);
    platform::FileStore store(device.OpenFiles(), u"");
    const platform::StoreInUse inUse(store);
    BytesCleaned = 0;
    DeleteTree(directory.c_str(), recurse, removeDirectories);
    return device.Listing();
}

TEST(DeleteTree, DeletesWhatItsFlagsSayAndCountsIt) {
    const Entries tree = {"T/a=0123456789", "T/b/c=01234", "T/b/e/f=012", "Tx=keep", "keep=k"};
    const struct {
        std::u16string directory;
        bool recurse, removeDirectories;
        Entries after;
        std::uint32_t bytes;
    } cases[] = {
        {u"\\T\\", false, true, {"T/", "T/b/", "T/b/c=01234", "T/b/e/", "T/b/e/f=012"}, 10},
        {u"\\T\\", true, false, {"T/", "T/b/", "T/b/e/"}, 18},
        {u"\\T\\", true, true, {"T/"}, 18},
        {u"t\\\\", true, true, {"T/"}, 18},
        {u"\\T\\b\\e\\", true, true, {"T/", "T/a=0123456789", "T/b/", "T/b/c=01234", "T/b/e/"}, 3},
    };
    for (const auto& expected : cases) {
        Entries after = expected.after;
        after.insert(after.end(), {"Tx=keep", "keep=k"});
        EXPECT_EQ(Delete(tree, expected.directory, expected.recurse, expected.removeDirectories),
                  after);
        EXPECT_EQ(BytesCleaned, expected.bytes);
    }
}

TEST(DeleteTree, PathsThatAreNoDirectoryDeleteNothing) {
    const TemporaryDevice device;
    device.Make({"Foo/in=1", "FooFoo/in=2", "FooBar/in=3", "FooFooFoo=4", "file=5", "link>Foo"});
    const Entries before = device.Listing();
    for (const std::u16string& path :
         std::vector<std::u16string>{u"", u"\\Foo", u"Foo", u"\\none\\", u"\\file\\", u"\\link\\",
                                     u"\\F*\\", u"\\Fo?\\", u"\\Foo\\..\\", u"\\.\\", u"/Foo\\"}) {
        platform::FileStore store(device.OpenFiles(), u"");
        const platform::StoreInUse inUse(store);
        DeleteTree(path.c_str(), true, true);
        EXPECT_EQ(device.Listing(), before) << platform::ReadableText(path);
    }
}

TEST(DeleteTree, WhatCannotGoStaysAndIsNotCounted) {
    const TemporaryDevice device;
    device.Make({"T/a=1", "T/b/locked=22", "T/c/d=333"});
    chmod((device.files() + "/T/b/locked").c_str(), 0444);
    platform::FileStore store(device.OpenFiles(), u"");
    const platform::StoreInUse inUse(store);
    BytesCleaned = 0;
    DeleteTree(u"\\T\\", true, true);
    EXPECT_EQ(device.Listing(), (Entries{"T/", "T/b/", "T/b/locked=22"}));
    EXPECT_EQ(BytesCleaned, 4U);
}

// 1023 characters are the longest path of an entry; what is longer is passed over, never cut.
TEST(DeleteTree, LongestPathsAreDeletedAndLongerOnesPassedOver) {
    const TemporaryDevice device;
    std::string directory;
    for (int level = 0; level < 10; ++level) {
        directory += std::string(99, static_cast<char>('a' + level)) + '/';
    }
    // "\T\" and ten levels of 100 characters leave 20 of the 1023.
    const std::string fits(20, 'f');
    const std::string tooLong(21, 'g');
    device.Make({"T/" + directory + fits + "=1", "T/" + directory + tooLong + "=2"});
    platform::FileStore store(device.OpenFiles(), u"");
    const platform::StoreInUse inUse(store);
    DeleteTree(u"\\T\\", true, false);
    const Entries after = device.Listing();
    ASSERT_EQ(after.size(), 12U);
    EXPECT_TRUE(after.back().ends_with(tooLong + "=2"));
}

TEST(DeleteTree, TreesAsDeepAsAPathGoWhole) {
    const TemporaryDevice device;
    std::string deep = "T/";
    for (int level = 0; level < 500; ++level) {
        deep += "d/";
    }
    device.Make({deep + "f=1"});
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    platform::FileStore store(device.OpenFiles(), u"");
    const platform::StoreInUse inUse(store);
    DeleteTree(u"\\T\\", true, true);
    EXPECT_EQ(device.Listing(), Entries{"T/"});
}

struct Move {
    const char* name;
    Entries before;
    std::u16string source, destination;
    Entries after;
};

const Move kMoves[] = {
    {"a tree",
     {"A/f=1", "A/s/g=2", "A/s/e/", "B/"},
     u"\\A",
     u"\\B\\",
     {"A/", "B/", "B/f=1", "B/s/", "B/s/e/", "B/s/g=2"}},
    {"an empty source", {"A/", "B/"}, u"\\A", u"\\B\\", {"A/", "B/"}},
    {"a missing source", {"B/"}, u"\\A", u"\\B\\", {"B/"}},
    {"a missing destination", {"A/f=1"}, u"\\A", u"\\B\\", {"A/", "A/f=1"}},
    {"a file as destination", {"A/f=1", "B=2"}, u"\\A", u"\\B\\", {"A/", "A/f=1", "B=2"}},
    {"a pattern", {"A/f=1", "B/"}, u"\\A*", u"\\B\\", {"A/", "A/f=1", "B/"}},
    {"the empty source", {"A/f=1", "B/"}, u"", u"\\B\\", {"A/", "A/f=1", "B/"}},
    {"the empty destination", {"A/f=1"}, u"\\A", u"", {"A/", "A/f=1"}},
    {"onto itself", {"A/f=1", "A/s/g=2"}, u"\\A", u"\\A\\", {"A/", "A/f=1", "A/s/", "A/s/g=2"}},
    {"onto itself with an empty part", {"A/s/"}, u"\\A\\", u"\\A\\", {"A/", "A/s/"}},
    {"onto itself in another spelling",
     {"A b/f=1", "A b/s/"},
     u"\\\\a B\\",
     u"A b\\\\",
     {"A b/", "A b/f=1", "A b/s/"}},
    {"into a part of itself",
     {"A/f=1", "A/s/g=2", "A/t/h=3"},
     u"\\A",
     u"\\A\\s\\",
     {"A/", "A/s/", "A/s/f=1", "A/s/g=2", "A/s/t/", "A/s/t/h=3"}},
    {"deep into itself",
     {"A/f=1", "A/s/g=2", "A/s/d/h=3"},
     u"\\A",
     u"\\a\\S\\D\\",
     {"A/", "A/s/", "A/s/d/", "A/s/d/f=1", "A/s/d/h=3", "A/s/g=2"}},
    {"out of the destination",
     {"A/B/f=1", "A/B/s/g=2"},
     u"\\A\\B",
     u"\\A\\",
     {"A/", "A/B/", "A/f=1", "A/s/", "A/s/g=2"}},
    {"a part named as the source itself",
     {"A/B/b/f=1", "A/B/g=2"},
     u"\\A\\B",
     u"\\A\\",
     {"A/", "A/B/", "A/B/b/", "A/B/b/f=1", "A/g=2"}},
    {"names that are taken",
     {"A/f=1", "A/g=2", "A/s/h=3", "A/s/i=4", "B/F=x", "B/S/H=y"},
     u"\\A",
     u"\\B\\",
     {"A/", "A/f=1", "A/s/", "A/s/h=3", "B/", "B/F=x", "B/S/", "B/S/H=y", "B/S/i=4", "B/g=2"}},
    {"a directory onto a file and a file onto a directory",
     {"A/d/f=1", "A/g=2", "B/d=x", "B/g/y=z"},
     u"\\A",
     u"\\B\\",
     {"A/", "A/d/", "A/d/f=1", "A/g=2", "B/", "B/d=x", "B/g/", "B/g/y=z"}},
    {"through a link", {"A/f=1", "B/", "L>B"}, u"\\A", u"\\L\\", {"A/", "A/f=1", "B/", "L>B"}},
    {"links and pipes as they are",
     {"A/l>/etc", "A/p|", "B/"},
     u"\\A",
     u"\\B\\",
     {"A/", "B/", "B/l>/etc", "B/p|"}},
    {"the same names in two cases",
     {"A/x=1", "A/X=2", "B/"},
     u"\\A",
     u"\\B\\",
     {}},  // which of them goes is the file system's order: only that none is lost counts
    {"the root", {"A/f=1", "g=2"}, u"\\", u"\\A\\", {"A/", "A/f=1", "A/g=2"}},
};

// The content of all files, which no move may change.
Entries Contents(const Entries& listing) {
    Entries contents;
    for (const std::string& entry : listing) {
        const std::size_t mark = entry.find('=');
        if (mark != std::string::npos) {
            contents.push_back(entry.substr(mark));
        }
    }
    std::sort(contents.begin(), contents.end());
    return contents;
}

TEST(MoveTree, MovesWhatItCanAndLosesNothing) {
    for (const Move& move : kMoves) {
        SCOPED_TRACE(move.name);
        const TemporaryDevice device;
        device.Make(move.before);
        const Entries before = device.Listing();
        platform::FileStore store(device.OpenFiles(), u"");
        const platform::StoreInUse inUse(store);
        BytesCleaned = 0;
        MoveTree(move.source.c_str(), move.destination.c_str());
        EXPECT_EQ(Contents(device.Listing()), Contents(before));
        if (!move.after.empty()) {
            EXPECT_EQ(device.Listing(), move.after);
        }
        const Entries moved = device.Listing();
        MoveTree(move.destination.c_str(), move.destination.c_str());
        EXPECT_EQ(device.Listing(), moved);
        EXPECT_EQ(BytesCleaned, 0U);
    }
}

// Each walk again and again, with its first, second, ... operation failing.
TEST(MoveTree, LosesNothingWhenAnyOperationFails) {
    for (const Move& move : kMoves) {
        SCOPED_TRACE(move.name);
        for (int failing = 1, calls = 1; failing <= calls; ++failing) {
            const TemporaryDevice device;
            device.Make(move.before);
            const Entries before = device.Listing();
            platform::FileStore real(device.OpenFiles(), u"");
            FailingStore store(real, failing);
            const platform::StoreInUse inUse(store);
            MoveTree(move.source.c_str(), move.destination.c_str());
            EXPECT_EQ(Contents(device.Listing()), Contents(before)) << "call " << failing;
            calls = store.calls();
        }
    }
}

TEST(DeleteTree, CountsOnlyWhatWentWhenAnyOperationFails) {
    for (int failing = 1, calls = 1; failing <= calls; ++failing) {
        const TemporaryDevice device;
        device.Make({"T/a=1", "T/b/c=22", "T/b/d/e=333", "T/f=4444", "keep=k"});
        platform::FileStore real(device.OpenFiles(), u"");
        FailingStore store(real, failing);
        const platform::StoreInUse inUse(store);
        BytesCleaned = 0;
        DeleteTree(u"\\T\\", true, true);
        std::size_t left = 0;
        for (const std::string& content : Contents(device.Listing())) {
            left += content.size() - 1;
        }
        EXPECT_EQ(BytesCleaned + left, 11U) << "call " << failing;
        EXPECT_EQ(device.Listing().back(), "keep=k");
        calls = store.calls();
    }
}

}  // namespace
