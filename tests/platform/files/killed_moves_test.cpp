// Runs that are killed after any of their system calls, or in which any of these fails.

#include <algorithm>
#include <cstdio>

#include "platform/text/reserved_names.h"
#include "tests/support/files_alone.h"
#include "tests/support/mounted_device.h"
#include "tests/support/system_calls.h"

namespace {

const std::string kLong(100000, 'x');  // more than one writing

struct Case {
    const char* name;
    Entries before;
    const WCHAR* from;  // of a move; null: `to` is written
    const WCHAR* to;
    Entries after;
    SystemCalls system;
};

BOOL Write(const WCHAR* path) {
    std::FILE* const file = _wfopen(path, u"wb");
    if (file != nullptr) {
        std::fputs(kLong.c_str(), file);
    }
    return file != nullptr && std::fclose(file) == 0 ? 1 : 0;
}

constexpr int kNoAnswer = 2;

// Without nameless files, renaming flags, links.
constexpr SystemCalls kNone = {false, false, false};
constexpr SystemCalls kNoFlags = {true, false, true};

const Entries kHere = {"A/f=" + kLong, "B/", "Card/B/"};
const Entries kMoved = {"A/", "B/", "B/g=" + kLong, "Card/B/"};
const Entries kOnCard = {"A/", "B/", "Card/B/", "Card/B/g=" + kLong};
const Entries kBack = {"A/", "A/g=" + kLong, "Card/B/"};
const Entries kWritten = {"A/", "A/f=" + kLong};
const Entries kCardWritten = {"Card/B/", "Card/B/f=" + kLong};
const Entries kDirectory = {"A/", "B/", "B/d/", "B/d/f=old"};
constexpr const WCHAR* kFile = u"\\A\\f";

const Case kCases[] = {
    {"Move", kHere, kFile, u"\\B\\g", kMoved, {}},
    {"MoveByLink", kHere, kFile, u"\\B\\g", kMoved, kNoFlags},
    {"MoveByLook", kHere, kFile, u"\\B\\g", kMoved, kNone},
    {"Directory", {"A/d/f=old", "B/"}, u"\\A\\d", u"\\B\\d", kDirectory, kNoFlags},
    {"ToCard", kHere, kFile, u"\\Card\\B\\g", kOnCard, {}},
    {"ToCardByLink", kHere, kFile, u"\\Card\\B\\g", kOnCard, {false, false, true}},
    {"FromCard", {"Card/B/f=" + kLong, "A/"}, u"\\card\\b\\f", u"\\A\\g", kBack, kNone},
    {"Replace", {"A/f=old"}, nullptr, kFile, kWritten, {}},
    {"ReplaceByName", {"A/f=old"}, nullptr, kFile, kWritten, kNone},
    {"ReplaceOnCard", {"Card/B/f=old"}, nullptr, u"\\Card\\B\\F", kCardWritten, kNone},
    {"Make", {"A/"}, nullptr, kFile, kWritten, {}},
    {"MakeByName", {"A/"}, nullptr, kFile, kWritten, kNone},
};

class KilledMovesTest : public testing::TestWithParam<Case> {
  protected:
    void SetUp() override {
        if (!EnterMountNamespace()) {
            GTEST_SKIP() << "this user may not mount anything";
        }
        device_.Mount("");
        device_.Mount("Card");
        after_ = GetParam().after;
        after_.emplace_back("Card/");
        std::sort(after_.begin(), after_.end());
    }
    void TearDown() override { g_calls = {}; }

    void Reset() const {
        device_.Clear();
        device_.Make(GetParam().before);
    }

    // One run: what is done first, and then the move or writing. Returns whether that was done or
    // has left a reason.
    bool Run() const {
        FilesAlone store(device_.OpenFiles());
        const platform::StoreInUse inUse(store);
        store.RecoverFromKilledRuns();
        const auto& [name, before, from, to, after, system] = GetParam();
        return (from == nullptr ? Write(to) : MoveFileW(from, to)) != 0 || GetLastError() != 0;
    }

    // Runs with a fault at the call of that number. Returns whether there were so many calls.
    bool RunWithFault(int number, int error) const {
        SystemCalls calls = GetParam().system;
        calls.faultAt = number;
        calls.error = error;
        const int ended = ::RunWithFault(calls, [this, error] {
            const bool isSilent = error == 0 || std::freopen("/dev/null", "w", stderr) != nullptr;
            return isSilent && Run() ? 0 : kNoAnswer;
        });
        EXPECT_NE(ended, kNoAnswer);
        return ended != kNoSuchCall;
    }

    // Whatever has a name of its own is whole, and a whole file is there.
    void ExpectNothingLost() const {
        bool isThere = GetParam().before == Entries{"A/"};
        for (const std::string& entry : device_.Listing()) {
            const std::string path = entry.substr(0, entry.find('='));
            const bool isWhole = entry.ends_with("=" + kLong) || entry.ends_with("=old");
            const std::string name = path.substr(path.rfind('/') + 1);
            EXPECT_TRUE(isWhole || entry.ends_with('/') || platform::IsReservedName(name)) << path;
            isThere = isThere || isWhole;
        }
        EXPECT_TRUE(isThere);
    }

    void ExpectFinishedByNextRun() const {
        g_calls = GetParam().system;
        testing::internal::CaptureStderr();
        Run();
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(device_.Listing(), after_);
        g_calls = {};
    }

    Entries after_;
    MountedDevice device_;
};

INSTANTIATE_TEST_SUITE_P(Calls, KilledMovesTest, testing::ValuesIn(kCases),
                         [](const auto& each) { return each.param.name; });

TEST_P(KilledMovesTest, AKillAfterAnyCallLosesNothing) {
    for (int number = 1;; ++number) {
        SCOPED_TRACE(number);
        for (int next = 1 + number % 5;; next += 5) {
            SCOPED_TRACE(next);
            Reset();
            if (!RunWithFault(number, 0)) {
                EXPECT_GT(number, 2);
                return;
            }
            ExpectNothingLost();
            const bool isKilledAgain = RunWithFault(next, 0);
            ExpectNothingLost();
            ExpectFinishedByNextRun();
            if (!isKilledAgain || HasFailure()) {
                break;
            }
        }
    }
}

TEST_P(KilledMovesTest, AnyCallThatFailsLosesNothing) {
    for (const int error : {EIO, ENOSPC, EACCES}) {
        for (int number = 1;; ++number) {
            SCOPED_TRACE(number);
            Reset();
            if (!RunWithFault(number, error)) {
                break;
            }
            ExpectNothingLost();
            ExpectFinishedByNextRun();
        }
    }
}

}  // namespace
