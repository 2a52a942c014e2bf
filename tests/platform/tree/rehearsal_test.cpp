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
#include <set>

#include "core/handheld_operations.h"
#include "platform/device/assembled_device.h"
#include "platform/report/report_lines.h"
#include "platform/report/reporting_store.h"
#include "tests/random/random_device.h"
#include "tests/support/apply_device.h"
#include "tests/support/failing_store.h"

namespace {

// Keeps the lines of the events, each with what identifies the entry exactly.
class CollectedEvents : public platform::ReportWriter {
  public:
    void Begin(const platform::ReportRun& /*run*/) override {}
    void Write(const platform::ReportEvent& event) override {
        lines.insert(platform::ReportLine(event));
        kinds.push_back(KindOf(event));
    }
    platform::Status Finish(const platform::ReportEnd& /*end*/) override { return {}; }

    std::multiset<std::string> lines;
    std::vector<std::string> kinds;

  private:
    static std::string KindOf(const platform::ReportEvent& event) {
        platform::ReportEvent kind = {.action = event.action};
        const std::string line = platform::ReportLine(kind);
        const std::string word = line.substr(0, line.find_first_of("[("));
        return event.failure ? platform::ReportLine({.action = event.action, .failure = ""})
                                       .substr(0, 12) + ": " + *event.failure
                             : word;
    }
};

struct Outcome {
    std::multiset<std::string> events;
    std::vector<std::string> boxes;
    std::vector<std::string> kinds;
    std::string notes;  // on standard error
    std::uint32_t bytesCleaned = 0;
    int restarts = 0;
    int exitCode = 0;

};

// Everything that can be compared, sorted.
Entries LinesOf(const Outcome& outcome) {
    Entries lines(outcome.events.begin(), outcome.events.end());
    lines.insert(lines.end(), outcome.boxes.begin(), outcome.boxes.end());
    lines.push_back(outcome.notes + std::to_string(outcome.bytesCleaned) + " bytes, " + std::to_string(outcome.restarts) +
            " restarts, exit code " + std::to_string(outcome.exitCode));
    std::sort(lines.begin(), lines.end());
    return lines;
}


constexpr const WCHAR* kModule = u"\\App\\Fennelbright.exe";

// Acts as the user of the device until it goes.
class ActingAs {
  public:
    explicit ActingAs(uid_t user) { EXPECT_EQ(seteuid(user), 0); }
    ~ActingAs() { EXPECT_EQ(seteuid(0), 0); }
};

Outcome RunOn(platform::AssembledDevice& store, const RandomDevice& random) {
    Outcome outcome;
    CollectedEvents events;
    platform::RunLog log("");
    const platform::LogInUse logInUse(log);
    platform::ReportingStore recorder(store, {&events}, log);
    testing::internal::CaptureStderr();
    const SilentRun run = RunSilently(recorder, random.allowsRestart());
    outcome.restarts = run.restarts;
    if (random.isErased()) {
        try {
            recorder.SetCleanRebootFlag();
            recorder.KernelIoControl(IOCTL_HAL_REBOOT, nullptr, 0, nullptr, 0, nullptr);
        } catch (const DeviceRestarted&) {
            ++outcome.restarts;
        }
    }
    recorder.WriteLastEvents();
    outcome.notes = testing::internal::GetCapturedStderr();
    if (const std::size_t erased = outcome.notes.rfind("fennelbright: "); outcome.restarts > run.restarts && erased != std::string::npos) {
        outcome.notes.resize(erased);  // that tells where the old files are
    }
    outcome.exitCode = log.ExitCode(true);
    outcome.events = std::move(events.lines);
    outcome.kinds = std::move(events.kinds);
    outcome.boxes = run.boxes;
    outcome.bytesCleaned = run.bytesCleaned;
    return outcome;
}

using MakeTree = std::unique_ptr<platform::RehearsedTree> (*)(platform::Descriptor root);

Outcome Rehearse(const RandomDevice& random, MakeTree makeTree) {
    const ActingAs user(random.user());
    const auto store = platform::AssembledDevice::Rehearsed(
        makeTree(random.device().OpenFiles()), kModule,
        random.device().OpenRegistry(platform::AccessTime::Kept), ThrowRestarted);
    return RunOn(*store, random);
}

Outcome ReallyRun(const RandomDevice& random) {
    const ActingAs user(random.user());
    platform::AssembledDevice store(random.device().OpenFiles(), kModule,
                                    random.device().OpenRegistry(), ThrowRestarted);
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

    // Whether rehearsal and run agree on the device of this seed.
    bool Agree(std::uint64_t seed, MakeTree makeTree, Outcome& rehearsed, Outcome& done) const {
        const bool isFull = seed % 5 == 0;
        const RandomDevice random(seed, room_->HostPath(isFull ? "small" : "all"), isFull);
        [[maybe_unused]] const Entries first = TracesOf(random);  // directories have been read now
        const Entries before = TracesOf(random);
        rehearsed = Rehearse(random, makeTree);
        EXPECT_EQ(Differences(before, TracesOf(random)), Entries()) << "seed " << seed;
        done = ReallyRun(random);
        return LinesOf(rehearsed) == LinesOf(done);
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
    const std::uint64_t devices = FromEnvironment("FENNELBRIGHT_RANDOM_DEVICES", 200);
    const std::uint64_t firstSeed = FromEnvironment("FENNELBRIGHT_SEED", std::random_device()());
    std::printf("%lu random devices from seed %lu\n", devices, firstSeed);
    std::map<std::string, int> kinds;
    for (std::uint64_t seed = firstSeed; seed < firstSeed + devices; ++seed) {
        Outcome rehearsed;
        Outcome done;
        Agree(seed, New<platform::RehearsedTree>, rehearsed, done);
        ASSERT_EQ(Differences(LinesOf(rehearsed), LinesOf(done)), Entries()) << "FENNELBRIGHT_SEED=" << seed
                                   << " FENNELBRIGHT_RANDOM_DEVICES=1";
        for (const std::string& kind : done.kinds) {
            ++kinds[kind];
        }
    }
    for (const auto& [kind, count] : kinds) {
        std::printf("%7d  %s\n", count, kind.c_str());
    }
}

}  // namespace
