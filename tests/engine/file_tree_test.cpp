#include "engine/file_tree.h"

#include <sys/resource.h>

#include <algorithm>
#include <tuple>

#include "engine/apply_sequence.h"
#include "platform/text/readable_text.h"
#include "tests/support/failing_store.h"
#include "tests/support/files_alone.h"
#include "tests/support/temporary_device.h"

namespace {

// Counts the moves of which it is noted that they could not begin.
class UnreachedCounter : public platform::ForwardingStore {
  public:
    using ForwardingStore::ForwardingStore;

    void NothingMoves(const WCHAR* /*from*/, const WCHAR* /*to*/) override { ++count; }

    int count = 0;
};

// A device with these entries in use. Its n-th operation that can fail does so, none for 0.
class Device : public TemporaryDevice {
  public:
    explicit Device(const Entries& entries, int failing = 0)
        : real_(OpenFiles()), store_(real_, failing), counter_(store_), inUse_(counter_) {
        Make(entries);
        BytesCleaned = 0;
    }
    int calls() const { return store_.calls(); }
    int unreached() const { return counter_.count; }

  private:
    FilesAlone real_;
    FailingStore store_;
    UnreachedCounter counter_;
    platform::StoreInUse inUse_;
};

Entries Made(const std::string& entries) {
    const TemporaryDevice device(Words(entries));
    return device.Listing();
}

TEST(FileTree, DeletesWhatItsFlagsSayAndCountsIt) {
    const std::string tree = "T/a=0123456789 T/b/c=01234 T/b/e/f=012 Tx=keep keep=k";
    const std::tuple<const WCHAR*, bool, bool, std::string, std::uint32_t> cases[] = {
        {u"\\T\\", false, true, "T/b/c=01234 T/b/e/f=012", 10},
        {u"\\T\\", true, false, "T/b/e/", 18},
        {u"\\T\\", true, true, "T/", 18},
        {u"t\\\\", true, true, "T/", 18},
        {u"\\T\\b\\e\\", true, true, "T/a=0123456789 T/b/c=01234 T/b/e/", 3},
    };
    for (const auto& [directory, recurse, removes, after, bytes] : cases) {
        const Device device(Words(tree));
        DeleteTree(directory, recurse, removes);
        EXPECT_EQ(device.Listing(), Made(after + " Tx=keep keep=k"));
        EXPECT_EQ(BytesCleaned, bytes);
    }
}

TEST(FileTree, PathsThatAreNoDirectoryDeleteNothing) {
    const Device device(Words("Foo/in=1 FooFoo/in=2 FooBar/in=3 FooFooFoo=4 file=5 link>Foo"));
    const Entries before = device.Listing();
    for (const std::u16string path : {u"", u"\\Foo", u"Foo", u"\\none\\", u"\\file\\", u"\\link\\",
                                      u"\\F*\\", u"\\Fo?\\", u"\\Foo\\..\\", u"\\.\\", u"/Foo\\"}) {
        DeleteTree(path.c_str(), true, true);
        EXPECT_EQ(device.Listing(), before) << platform::ReadableText(path);
    }
}

// 1023 characters are the longest path of an entry; what is longer is passed over, never cut.
TEST(FileTree, LongestPathsAreDeletedAndLongerOnesPassedOver) {
    std::string directory = "T/";
    for (int level = 0; level < 10; ++level) {
        directory += std::string(99, static_cast<char>('a' + level)) + '/';
    }
    // "\T\" and ten levels of 100 characters leave 20 of the 1023.
    const std::string tooLong = directory + std::string(21, 'g') + "=2";
    const Device device({directory + std::string(20, 'f') + "=1", tooLong});
    DeleteTree(u"\\T\\", true, false);
    EXPECT_EQ(device.Listing(), Made(tooLong));
}

TEST(FileTree, TreesAsDeepAsAPathGoWhole) {
    std::string deep = "T/";
    for (int level = 0; level < 500; ++level) {
        deep += "d/";
    }
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    const Device device({deep + "f=1"});
    DeleteTree(u"\\T\\", true, true);
    EXPECT_EQ(device.Listing(), Entries{"T/"});
}

const struct {
    const char* name;
    const char* before;
    const WCHAR* from;
    const WCHAR* to;
    const char* after;    // null where only that nothing is lost counts
    bool reached = true;  // or not there to be moved
} kMoves[] = {
    {"a tree", "A/f=1 A/s/g=2 A/s/e/ B/", u"\\A", u"\\B\\", "A/ B/f=1 B/s/g=2 B/s/e/"},
    {"a missing source", "B/", u"\\A", u"\\B\\", "B/"},
    {"a missing destination", "A/f=1", u"\\A", u"\\B\\", "A/f=1", false},
    {"a file as destination", "A/f=1 B=2", u"\\A", u"\\B\\", "A/f=1 B=2", false},
    {"a pattern", "A/f=1 B/", u"\\A*", u"\\B\\", "A/f=1 B/"},
    {"the empty destination", "A/f=1", u"\\A", u"", "A/f=1", false},
    {"onto itself", "A/f=1 A/s/g=2", u"\\A", u"\\A\\", "A/f=1 A/s/g=2"},
    {"onto itself respelt", "Ab/f=1 Ab/s/", u"\\\\aB\\", u"Ab\\\\", "Ab/f=1 Ab/s/"},
    {"into a part of itself", "A/f=1 A/s/g=2 A/t/h=3", u"\\A", u"\\A\\s\\",
     "A/s/f=1 A/s/g=2 A/s/t/h=3"},
    {"deep into itself", "A/f=1 A/s/g=2 A/s/d/h=3", u"\\A", u"\\a\\S\\D\\",
     "A/s/d/f=1 A/s/d/h=3 A/s/g=2"},
    {"out of the destination", "A/B/f=1 A/B/s/g=2", u"\\A\\B", u"\\A\\", "A/B/ A/f=1 A/s/g=2"},
    {"a part named as the source", "A/B/b/f=1 A/B/g=2", u"\\A\\B", u"\\A\\", "A/B/b/f=1 A/g=2"},
    {"names that are taken", "A/f=1 A/g=2 A/s/h=3 A/s/i=4 B/F=x B/S/H=y", u"\\A", u"\\B\\",
     "A/f=1 A/s/h=3 B/F=x B/S/H=y B/S/i=4 B/g=2"},
    {"names of the other kind", "A/d/f=1 A/g=2 B/d=x B/g/y=z", u"\\A", u"\\B\\",
     "A/d/f=1 A/g=2 B/d=x B/g/y=z", false},
    {"out of a link", "A/f=1 B/ L>A", u"\\L", u"\\B\\", "A/f=1 B/ L>A", false},
    {"through a link", "A/f=1 B/ L>B", u"\\A", u"\\L\\", "A/f=1 B/ L>B", false},
    {"links and pipes as they are", "A/l>/etc A/p| B/", u"\\A", u"\\B\\", "A/ B/l>/etc B/p|"},
    {"the same names in two cases", "A/x=1 A/X=2 B/", u"\\A", u"\\B\\", nullptr},
    {"the root", "A/f=1 g=2", u"\\", u"\\A\\", "A/f=1 A/g=2"},
};

// The content of all files, which no move may change.
Entries Contents(const TemporaryDevice& device) {
    Entries contents;
    for (const std::string& entry : device.Listing()) {
        if (const std::size_t mark = entry.find('='); mark != std::string::npos) {
            contents.push_back(entry.substr(mark));
        }
    }
    std::sort(contents.begin(), contents.end());
    return contents;
}

TEST(FileTree, MovesWhatItCan) {
    for (const auto& move : kMoves) {
        SCOPED_TRACE(move.name);
        const Device device(Words(move.before));
        MoveTree(move.from, move.to);
        const Entries moved = device.Listing();
        EXPECT_EQ(device.unreached(), move.reached ? 0 : 1);
        if (move.after != nullptr) {
            EXPECT_EQ(moved, Made(move.after));
        }
        MoveTree(move.to, move.to);
        EXPECT_EQ(device.Listing(), moved);
        EXPECT_EQ(BytesCleaned, 0U);
    }
}

// Each walk again and again, with none and with its first, second, ... operation failing.
TEST(FileTree, LosesNothingWhateverFails) {
    for (const auto& move : kMoves) {
        SCOPED_TRACE(move.name);
        for (int failing = 0, calls = 1; failing <= calls; ++failing) {
            const Device device(Words(move.before), failing);
            const Entries before = Contents(device);
            MoveTree(move.from, move.to);
            EXPECT_EQ(Contents(device), before) << "call " << failing;
            calls = device.calls();
        }
    }
}

// The look for the source, that for the destination, or the reading of the source fails.
TEST(FileTree, NotesWhatCouldNotBeReached) {
    for (const int failing : {1, 3, 5}) {
        const Device device(Words("A/f=1 B/"), failing);
        EXPECT_TRUE(MoveTree(u"\\A", u"\\B\\"));
        EXPECT_EQ(device.unreached(), 1) << failing;
    }
}

TEST(FileTree, CountsOnlyWhatWentWhenAnyOperationFails) {
    for (int failing = 1, calls = 1; failing <= calls + 1; ++failing) {
        const Device device(Words("T/a=1 T/b/c=22 T/b/d/e=333 T/f=4444 keep=k"), failing);
        DeleteTree(u"\\T\\", true, true);
        std::size_t left = 0;
        for (const std::string& content : Contents(device)) {
            left += content.size() - 1;
        }
        EXPECT_EQ(BytesCleaned + left, 11U) << "call " << failing;
        EXPECT_EQ(device.Listing().back(), "keep=k");
        calls = device.calls();
    }
}

}  // namespace
