// The host's entry: starts the program on a device directory.

#include <fcntl.h>
#include <sys/resource.h>
#include <sysexits.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <new>
#include <string_view>

#include "platform/command_line/command_line.h"
#include "platform/diagnostics/run_log.h"
#include "platform/host/boot.h"
#include "platform/host/device_choice.h"
#include "platform/host/device_run.h"
#include "platform/host/help_viewer_process.h"
#include "platform/host/make_sample_device.h"
#include "platform/host/settings_commands.h"
#include "platform/host/several_devices.h"

namespace {

using platform::CommandLine;

// A walk holds a descriptor or two for each level of a tree.
void AllowManyDescriptors() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

// A file that took the place of a closed stream would get what is meant for the stream.
void OccupyStandardStreams() {
    int stream = open("/dev/null", O_RDWR);
    while (stream >= 0 && stream <= STDERR_FILENO) {
        stream = open("/dev/null", O_RDWR);
    }
    close(stream);
}

const CommandLine* g_line = nullptr;  // null until it is read

// Memory cannot run out in the middle of anything that would have to be undone: what is stored
// whole stays so however the process ends. Going on, or leaving through the toolkit, could not be
// relied on.
void EndWithoutMemory() {
    for (const std::string_view part :
         {"fennelbright: ", g_line != nullptr ? g_line->device.c_str() : "",
          ": out of memory; what had not been stored by then is lost\n"}) {
        [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, part.data(), part.size());
    }
    _exit(EX_OSERR);
}

void PrepareProcess() {
    OccupyStandardStreams();
    std::set_new_handler(EndWithoutMemory);
    // A reader of the report who goes away must not end the work half done.
    std::signal(SIGPIPE, SIG_IGN);
    // A file that grows beyond what is allowed is an error of the writing, as a full disk is.
    std::signal(SIGXFSZ, SIG_IGN);
    // Where it is ignored, a process takes along how it has ended.
    std::signal(SIGCHLD, SIG_DFL);
    AllowManyDescriptors();
}

int RunTask(CommandLine& line) {
    switch (line.task) {
        case CommandLine::Task::ShowHelp:
            std::fputs(platform::kHelp, stdout);
            return 0;
        case CommandLine::Task::ShowVersion:
            std::puts("fennelbright " FENNELBRIGHT_VERSION);
            return 0;
        case CommandLine::Task::Boot:
            return platform::BootDevice(line);
        case CommandLine::Task::Settings:
            return platform::RunSettingsCommands(line);
        case CommandLine::Task::MakeSampleDevice:
            return platform::RunMakeSampleDevice(line);
        case CommandLine::Task::ShowHelpPage:
            return platform::RunHelpViewer(line);
        case CommandLine::Task::Run:
            return line.device.empty()           ? platform::RunOnChosenDevice(line)
                   : line.furtherDevices.empty() ? platform::RunOnDevice(line)
                                                 : platform::RunOnSeveralDevices(line);
    }
    return EX_SOFTWARE;
}

}  // namespace

int main(int count, char** words) {
    PrepareProcess();
    platform::Result<CommandLine> line = platform::ParseCommandLine(count, words);
    if (!line) {
        const std::string& option = line.error().object;
        platform::RunLog("").Say((option.empty() ? "" : option + ": ") +
                                 platform::ReasonOf(line.error()) + "; see fennelbright --help");
        return EX_USAGE;
    }
    g_line = &*line;
    return RunTask(*line);
}
