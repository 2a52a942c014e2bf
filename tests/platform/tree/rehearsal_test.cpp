// A rehearsal and the run after it, on random devices: what is foreseen is what happens.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "core/handheld_operations.h"
#include "platform/device/assembled_device.h"
#include "platform/report/report_lines.h"
#include "platform/report/reporting_store.h"
#include "platform/sample/sample_files.h"
#include "tests/random/random_device.h"
#include "tests/support/apply_device.h"
#include "tests/support/failing_store.h"

namespace {

using Kinds = std::map<std::string, int>;

// Keeps the lines of the events, and counts their kinds and the reasons of what was not done.
class CollectedEvents : public platform::ReportWriter {
  public:
    void Begin(const platform::ReportRun& /*run*/) override {}
    void Write(const platform::ReportEvent& event) override {
        lines.push_back(platform::ReportLine(event));
        constexpr const char* kDone[] = {
            "deleted", "removed directory", "made directory", "moved",      "made shortcut",
            "wrote",   "deleted key",       "read",           "restarting", "erasing"};
        ++kinds[event.failure ? "refused: " + *event.failure
                              : kDone[static_cast<std::size_t>(event.action)]];
    }
    platform::Status Finish(const platform::ReportEnd& /*end*/) override { return {}; }

    Entries lines;
    Kinds kinds;
};

struct Outcome {
    Entries lines;  // of the report, boxes, notes and what else can be compared, sorted
    Kinds kinds;
};

// Of a restart, and of a run that may not change anything.
[[noreturn]] void ThrowEnded(int /*code*/) {
    throw DeviceRestarted();
}

// Acts as the user of the device until it goes.
class ActingAs {
  public:
    explicit ActingAs(uid_t user) { EXPECT_EQ(seteuid(user), 0); }
    ~ActingAs() { EXPECT_EQ(seteuid(0), 0); }
};

// The hard reset of a device, which a restart follows.
int EraseAndRestart(platform::DeviceStore& store) {
    try {
        store.SetCleanRebootFlag();
        store.KernelIoControl(IOCTL_HAL_REBOOT, nullptr, 0, nullptr, 0, nullptr);
    } catch (const DeviceRestarted&) {
        return 1;
    }
    return 0;
}

// Without the last note of a device that was erased, which tells where the old files are.
std::string WithoutPlace(std::string notes) {
    notes.resize(notes.rfind("fennelbright: "));
    return notes;
}

Outcome RunOn(platform::AssembledDevice& store, const RandomDevice& random) {
    CollectedEvents events;
    platform::RunLog log("");
    const platform::LogInUse logInUse(log);
    platform::ReportingStore recorder(store, {&events}, log);
    testing::internal::CaptureStderr();
    const SilentRun run = RunSilently(recorder, random.allowsRestart());
    const int erased = random.isErased() ? EraseAndRestart(recorder) : 0;
    recorder.WriteLastEvents();
    std::string notes = testing::internal::GetCapturedStderr();
    notes = erased > 0 ? WithoutPlace(notes) : notes;
    Entries lines = std::move(events.lines);
    lines.insert(lines.end(), run.boxes.begin(), run.boxes.end());
    lines.push_back(notes + std::to_string(run.bytesCleaned) + " bytes, " +
                    std::to_string(run.restarts + erased) + " restarts, exit code " +
                    std::to_string(log.ExitCode(true)));
    std::sort(lines.begin(), lines.end());
    return {std::move(lines), std::move(events.kinds)};
}

using MakeTree = std::unique_ptr<platform::RehearsedTree> (*)(platform::Descriptor root);

Outcome Rehearse(const RandomDevice& random, MakeTree makeTree) {
    const ActingAs user(random.user());
    const auto store = platform::AssembledDevice::Rehearsed(
        makeTree(random.device().OpenFiles()), platform::kDefaultModulePath,
        random.device().OpenRegistry(platform::AccessTime::Kept), ThrowEnded);
    return RunOn(*store, random);
}

Outcome ReallyRun(const RandomDevice& random) {
    const ActingAs user(random.user());
    platform::AssembledDevice store(random.device().OpenFiles(), platform::kDefaultModulePath,
                                    random.device().OpenRegistry(), ThrowEnded);
    return RunOn(store, random);
}

// What only one of them has, with a sign of which one; both are sorted.
Entries Differences(const Entries& first, const Entries& second) {
    Entries different;
    std::set_difference(first.begin(), first.end(), second.begin(), second.end(),
                        std::back_inserter(different));
    const std::size_t ofFirst = different.size();
    std::set_difference(second.begin(), second.end(), first.begin(), first.end(),
                        std::back_inserter(different));
    for (std::size_t index = 0; index < different.size(); ++index) {
        different[index].insert(0, index < ofFirst ? "first: " : "second: ");
    }
    return different;
}

std::string TimeOf(const timespec& time) {
    return ' ' + std::to_string(time.tv_sec) + '.' + std::to_string(time.tv_nsec);
}

// Everything that the host knows of the device, read without a trace. The time of access of what
// is not the user's own is left out: only the owner may read without setting it.
Entries TracesOf(const RandomDevice& random) {
    Entries traces;
    const auto add = [&](const std::filesystem::path& path) {
        struct stat status {};
        EXPECT_EQ(lstat(path.c_str(), &status), 0);
        std::string trace = path.string() + ' ' + std::to_string(status.st_mode) + ' ' +
                            std::to_string(status.st_ino) + ' ' + std::to_string(status.st_nlink) +
                            ' ' + std::to_string(status.st_size) + TimeOf(status.st_mtim) +
                            TimeOf(status.st_ctim);
        if (random.user() == 0 || status.st_uid == random.user()) {
            trace += TimeOf(status.st_atim);
        }
        if (S_ISREG(status.st_mode)) {
            const platform::Descriptor file(open(path.c_str(), O_RDONLY | O_NOATIME | O_CLOEXEC));
            std::string content(static_cast<std::size_t>(status.st_size), '\0');
            EXPECT_EQ(read(file.get(), content.data(), content.size()), status.st_size);
            trace += ' ' + std::to_string(std::hash<std::string>()(content));
        }
        traces.push_back(trace);
    };
    add(random.device().path());
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(random.device().path())) {
        add(entry.path());
    }
    std::sort(traces.begin(), traces.end());
    return traces;
}

class RehearsalTest : public testing::Test {
  protected:
    void SetUp() override {
        if (geteuid() != 0 || !EnterMountNamespace()) {
            GTEST_SKIP() << "only the superuser can make devices of other users";
        }
        room_ = std::make_unique<MountedDevice>();
        room_->Mount("all", "mode=777");
        room_->Mount("small", "mode=777,size=8m");
        chmod(room_->path().c_str(), 0755);
    }

    // What rehearsal and run of the device of this seed do not have in common; counts the kinds of
    // what was done.
    Entries Compare(std::uint64_t seed, MakeTree makeTree, Kinds& kinds) const {
        const bool isFull = seed % 2 == 0;
        const RandomDevice random(
            seed, room_->HostPath(isFull ? "small" : "all"),
            isFull ? RandomDevice::Kind::AlmostFull : RandomDevice::Kind::OfThisPlatform);
        static_cast<void>(TracesOf(random));  // now the reading of directories leaves no trace
        const Entries before = TracesOf(random);
        const Outcome rehearsed = Rehearse(random, makeTree);
        EXPECT_EQ(Differences(before, TracesOf(random)), Entries()) << "seed " << seed;
        const Outcome done = ReallyRun(random);
        for (const auto& [kind, count] : done.kinds) {
            kinds[kind] += count;
        }
        return Differences(rehearsed.lines, done.lines);
    }

    std::unique_ptr<MountedDevice> room_;
};

template <typename Tree>
std::unique_ptr<platform::RehearsedTree> New(platform::Descriptor root) {
    return std::make_unique<Tree>(std::move(root));
}

std::uint64_t FromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* const value = std::getenv(name);
    return value == nullptr ? otherwise : std::strtoull(value, nullptr, 10);
}

TEST_F(RehearsalTest, ForeseesWhatTheRunDoes) {
    const std::uint64_t devices = FromEnvironment("RANDOM_DEVICES", 200);
    const std::uint64_t firstSeed = FromEnvironment("RANDOM_SEED", 1);
    std::printf("%lu random devices from seed %lu\n", devices, firstSeed);
    Kinds kinds;
    for (std::uint64_t seed = firstSeed; seed < firstSeed + devices; ++seed) {
        ASSERT_EQ(Compare(seed, New<platform::RehearsedTree>, kinds), Entries())
            << "again with RANDOM_SEED=" << seed << " RANDOM_DEVICES=1";
    }
    for (const auto& [kind, count] : kinds) {
        std::printf("%7d  %s\n", count, kind.c_str());
    }
    for (const char* const kind : {"deleted",
                                   "removed directory",
                                   "made directory",
                                   "moved",
                                   "made shortcut",
                                   "wrote",
                                   "deleted key",
                                   "restarting",
                                   "erasing",
                                   "refused: it is read-only",
                                   "refused: Permission denied",
                                   "refused: Operation not permitted",
                                   "refused: Device or resource busy",
                                   "refused: Read-only file system",
                                   "refused: another file system is mounted there",
                                   "refused: a file system is mounted there",
                                   "refused: the name is already in use",
                                   "refused: No space left on device",
                                   "refused: there is no room to store the registry afterwards",
                                   "refused: only files can go to another volume",
                                   "refused: a symbolic link, which is not followed",
                                   "refused: a directory in its path is missing",
                                   "refused: No such file or directory"}) {
        EXPECT_GE(kinds[kind], devices < 2000 ? 0 : 100) << kind;
    }
}

// Faults of a rehearsal, of a kind each.

class ForgetsDeletions : public platform::RehearsedTree {
  public:
    using RehearsedTree::RehearsedTree;
    platform::Status Unlink(const platform::OpenedDirectory& directory, const char* name) override {
        return *name == 'a' ? platform::Status() : RehearsedTree::Unlink(directory, name);
    }
};

// Lists what `isListed` says of an entry's name.
class PartOfListing : public platform::DirectoryListing {
  public:
    using IsListed = std::function<bool(const char* name)>;
    PartOfListing(std::unique_ptr<DirectoryListing> all, IsListed isListed)
        : all_(std::move(all)), isListed_(std::move(isListed)) {}

    platform::Result<bool> Next() override {
        platform::Result<bool> more = all_->Next();
        while (more && *more && !isListed_(all_->entry().name)) {
            more = all_->Next();
        }
        entry_ = all_->entry();
        return more;
    }

  private:
    std::unique_ptr<DirectoryListing> all_;
    IsListed isListed_;
};

class ForgetsWhatMovedIn : public platform::RehearsedTree {
  public:
    using RehearsedTree::RehearsedTree;
    std::unique_ptr<platform::DirectoryListing> List(
        const platform::OpenedDirectory& directory) const override {
        const auto isReal = [&directory](const char* name) {
            return directory.descriptor &&
                   faccessat(directory.get(), name, F_OK, AT_SYMLINK_NOFOLLOW) == 0;
        };
        return std::make_unique<PartOfListing>(RehearsedTree::List(directory), isReal);
    }
};

class LosesNamesInAnotherCase : public platform::RehearsedTree {
  public:
    using RehearsedTree::RehearsedTree;
    std::unique_ptr<platform::DirectoryListing> List(
        const platform::OpenedDirectory& directory) const override {
        const auto isLower = [](const char* name) { return *name < 'A' || *name > 'Z'; };
        return std::make_unique<PartOfListing>(RehearsedTree::List(directory), isLower);
    }
};

class HasRoomForAll : public platform::RehearsedTree {
  public:
    explicit HasRoomForAll(platform::Descriptor root) : RehearsedTree(std::move(root)) {}
    platform::Status MoveToVolume(const platform::FileMove& move) override {
        struct stat status {};
        EXPECT_EQ(fstat(move.to.get() < 0 ? move.toVolume->get() : move.to.get(), &status), 0);
        room().Free(status.st_dev, 1U << 20U);
        return RehearsedTree::MoveToVolume(move);
    }
};

TEST_F(RehearsalTest, AFaultInItIsFound) {
    const std::pair<const char*, MakeTree> faults[] = {
        {"a deletion is forgotten", New<ForgetsDeletions>},
        {"names in another case are lost", New<LosesNamesInAnotherCase>},
        {"a volume has room for everything", New<HasRoomForAll>},
        {"what has moved in is not listed", New<ForgetsWhatMovedIn>}};
    for (const auto& [fault, makeTree] : faults) {
        constexpr std::uint64_t kMostDevices = 400;
        std::uint64_t seed = 1;
        Kinds kinds;
        while (seed <= kMostDevices && Compare(seed, makeTree, kinds).empty()) {
            ++seed;
        }
        std::printf("%7lu devices until it is seen that %s\n", seed, fault);
        EXPECT_LE(seed, kMostDevices) << fault;
    }
}

}  // namespace
