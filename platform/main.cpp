// The host's entry: starts the program on a device directory.

#include <fcntl.h>
#include <sys/resource.h>
#include <sysexits.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "core/win_main.h"
#include "platform/answering_store.h"
#include "platform/boot.h"
#include "platform/boxes_on_demand.h"
#include "platform/command_line.h"
#include "platform/console_windows.h"
#include "platform/device_directory.h"
#include "platform/directory_store.h"
#include "platform/display.h"
#include "platform/host_text.h"
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

int RunWith(platform::DeviceStore& store, platform::WindowSystem& windows, CommandLine& line) {
    const platform::StoreInUse storeInUse(store);
    const platform::WindowsInUse windowsInUse(windows);
    return WinMain(nullptr, nullptr, line.programLine.data(), 0);
}

// Runs the program with its windows on the display, or without any when `windows` is null.
int RunProgram(platform::DeviceStore& store, platform::DisplayWindows* windows, CommandLine& line) {
    if (windows != nullptr) {
        platform::AnsweringStore answering(store, *windows);
        return RunWith(answering, *windows, line);
    }
    if (line.noDisplay) {
        platform::ConsoleWindows console(stderr);
        return RunWith(store, console, line);
    }
    platform::BoxesOnDemand boxes(platform::NeedsFor(line.device.c_str(), line.scale), stderr);
    return RunWith(store, boxes, line);
}

int RunReported(platform::DeviceStore& store, platform::DisplayWindows* windows,
                CommandLine& line) {
    platform::RecordingStore recorder(store, stdout);
    const int result = RunProgram(recorder, windows, line);
    if (!recorder.Finish()) {
        Complain("the report is not complete", "standard output cannot be written");
    }
    return result;
}

// The windows of the interactive run. Null, with a line on standard error, when there is no display
// for them.
std::unique_ptr<platform::DisplayWindows> OpenWindows(const CommandLine& line) {
    std::string reason = "--no-display keeps them away; \"silent\" runs without them";
    std::unique_ptr<platform::DisplayWindows> windows;
    if (!line.noDisplay) {
        reason = "none answers under DISPLAY or WAYLAND_DISPLAY; \"silent\" runs without one";
        if (platform::DisplayIsThere()) {
            windows = platform::OpenDisplayWindows(
                platform::NeedsFor(line.device.c_str(), line.scale), reason);
        }
    }
    if (windows == nullptr) {
        Complain("no display for the program's windows", reason);
    }
    return windows;
}

bool OpenDevice(const CommandLine& line, platform::DeviceDirectory& device) {
    const std::string reason = platform::OpenDeviceDirectory(line.device.c_str(), device);
    if (!reason.empty()) {
        Complain("no device in " + line.device, reason);
    }
    return reason.empty();
}

int Run(CommandLine& line) {
    platform::DeviceDirectory device;
    if (!OpenDevice(line, device)) {
        return EX_NOINPUT;
    }
    const bool interactive = !IsSilentCommandLine(line.programLine.c_str());
    const auto windows = interactive ? OpenWindows(line) : nullptr;
    if (interactive && windows == nullptr) {
        return EX_UNAVAILABLE;
    }
    AllowManyDescriptors();
    const auto store = OpenStore(device, line);
    if (store == nullptr) {
        return EX_DATAERR;
    }
    const int result = line.report ? RunReported(*store, windows.get(), line)
                                   : RunProgram(*store, windows.get(), line);
    const std::string unsaved = store->Finish();
    if (!unsaved.empty()) {
        Complain("the changes to the registry are lost", unsaved);
    }
    return result;
}

// The words of a host that runs one shortcut's command line.
std::vector<std::string> WordsFor(const CommandLine& line, const std::u16string& arguments) {
    std::vector<std::string> words = {"fennelbright", "--device", line.device, "--module",
                                      platform::Utf8Text(line.modulePath)};
    if (line.report) {
        words.emplace_back("--report");
    }
    if (line.noDisplay) {
        words.emplace_back("--no-display");
    }
    if (line.scale > 0) {
        words.insert(words.end(), {"--scale", std::to_string(line.scale)});
    }
    words.emplace_back("--");
    words.push_back(platform::Utf8Text(arguments));
    return words;
}

int Boot(const CommandLine& line) {
    platform::DeviceDirectory device;
    if (!OpenDevice(line, device)) {
        return EX_NOINPUT;
    }
    platform::FileStore store(std::move(device.files), line.modulePath);
    int result = 0;
    for (const auto& shortcut : platform::StartupShortcuts(store, line.modulePath)) {
        const std::string name = platform::ReadableText(shortcut.path);
        if (!shortcut.arguments) {
            Complain(name + " is passed over",
                     shortcut.target.empty()
                         ? "it is no shortcut"
                         : "it starts " + platform::ReadableText(shortcut.target));
            continue;
        }
        const int ended = platform::RunHostAgain(WordsFor(line, *shortcut.arguments));
        if (ended != 0) {
            Complain(name + " did not end well", "exit code " + std::to_string(ended));
            result = result == 0 ? ended : result;
        }
    }
    return result < 0 ? EX_OSERR : result;
}

// A file that took the place of a closed stream would get what is meant for the stream.
void OccupyStandardStreams() {
    int stream = open("/dev/null", O_RDWR);
    while (stream >= 0 && stream <= STDERR_FILENO) {
        stream = open("/dev/null", O_RDWR);
    }
    close(stream);
}

}  // namespace

int main(int count, char** words) {
    OccupyStandardStreams();
    // A reader of the report who goes away must not end the work half done.
    std::signal(SIGPIPE, SIG_IGN);
    // Where it is ignored, a process takes along how it has ended.
    std::signal(SIGCHLD, SIG_DFL);
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
        case CommandLine::Task::Boot:
            return Boot(*line);
        case CommandLine::Task::MakeSampleDevice:
            return MakeSampleDevice(*line);
        case CommandLine::Task::Run:
            return Run(*line);
    }
    return EX_SOFTWARE;
}
