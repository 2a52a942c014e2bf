// The host's entry: starts the program on a device directory.

#include <sys/resource.h>
#include <sysexits.h>

#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

#include "core/win_main.h"
#include "platform/command_line.h"
#include "platform/console_windows.h"
#include "platform/device_directory.h"
#include "platform/directory_store.h"
#include "platform/recording_store.h"
#include "platform/sample_device.h"
#include "platform/sample_registry.h"

namespace {

using platform::CommandLine;

void Complain(const std::string& what, const std::string& why) {
    std::fprintf(stderr, "fennelbright: %s: %s\n", what.c_str(), why.c_str());
}

// A walk holds a descriptor or two for each level of a tree.
void AllowManyDescriptors() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

// Null, with a line on standard error, when the device's registry cannot be read.
std::unique_ptr<platform::DirectoryStore> OpenStore(platform::DeviceDirectory& device,
                                                    const CommandLine& line) {
    std::string reason;
    auto registry = platform::Registry::Open(device.directory.get(), reason);
    if (registry == nullptr) {
        Complain("the registry of " + line.device + " cannot be used", reason);
        return nullptr;
    }
    return std::make_unique<platform::DirectoryStore>(std::move(device.files), line.modulePath,
                                                      std::move(registry));
}

int MakeSampleDevice(const CommandLine& line) {
    platform::DeviceDirectory device;
    const std::string reason = platform::MakeDeviceDirectory(line.device.c_str(), device);
    if (!reason.empty()) {
        Complain("no device can be made in " + line.device, reason);
        return EX_CANTCREAT;
    }
    std::string missing = "registry.reg";
    if (platform::WriteSampleRegistry(device.directory.get())) {
        const auto store = OpenStore(device, line);
        if (store == nullptr) {
            return EX_CANTCREAT;
        }
        const platform::StoreInUse inUse(*store);
        missing = platform::FillSampleDevice(*store);
    }
    if (!missing.empty()) {
        Complain("the device in " + line.device + " is not complete", "cannot make " + missing);
        return EX_CANTCREAT;
    }
    return 0;
}

int RunProgram(platform::DeviceStore& store, CommandLine& line) {
    const platform::StoreInUse inUse(store);
    platform::ConsoleWindows windows(stderr);
    const platform::WindowsInUse windowsInUse(windows);
    return WinMain(nullptr, nullptr, line.programLine.data(), 0);
}

int RunReported(platform::DeviceStore& store, CommandLine& line) {
    platform::RecordingStore recorder(store, stdout);
    const int result = RunProgram(recorder, line);
    if (!recorder.Finish()) {
        Complain("the report is not complete", "standard output cannot be written");
    }
    return result;
}

int Run(CommandLine& line) {
    platform::DeviceDirectory device;
    const std::string reason = platform::OpenDeviceDirectory(line.device.c_str(), device);
    if (!reason.empty()) {
        Complain("no device in " + line.device, reason);
        return EX_NOINPUT;
    }
    if (!IsSilentCommandLine(line.programLine.c_str())) {
        Complain("no display for the program's windows", "\"silent\" runs without them");
        return EX_UNAVAILABLE;
    }
    AllowManyDescriptors();
    const auto store = OpenStore(device, line);
    if (store == nullptr) {
        return EX_DATAERR;
    }
    const int result = line.report ? RunReported(*store, line) : RunProgram(*store, line);
    const std::string unsaved = store->Finish();
    if (!unsaved.empty()) {
        Complain("the changes to the registry are lost", unsaved);
    }
    return result;
}

}  // namespace

int main(int count, char** words) {
    // A reader of the report who goes away must not end the work half done.
    std::signal(SIGPIPE, SIG_IGN);
    std::optional<CommandLine> line = platform::ParseCommandLine(count, words);
    if (!line) {
        return EX_USAGE;
    }
    switch (line->task) {
        case CommandLine::Task::ShowHelp:
            std::fputs(platform::kHelp, stdout);
            return 0;
        case CommandLine::Task::ShowVersion:
            std::puts("fennelbright " FENNELBRIGHT_VERSION);
            return 0;
        case CommandLine::Task::MakeSampleDevice:
            return MakeSampleDevice(*line);
        case CommandLine::Task::Run:
            return Run(*line);
    }
    return EX_SOFTWARE;
}
