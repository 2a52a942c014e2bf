#include "platform/host/boot.h"

#include <spawn.h>
#include <sys/wait.h>
#include <sysexits.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/command_line/named_device.h"
#include "platform/diagnostics/run_log.h"
#include "platform/files/host_files.h"
#include "platform/files/startup_shortcuts.h"
#include "platform/host/worst_exit_code.h"
#include "platform/text/readable_text.h"
#include "platform/text/text_encoding.h"
#include "platform/tree/rehearsed_tree.h"

namespace platform {

namespace {

// The words of a host that runs one shortcut's command line.
std::vector<std::string> WordsFor(const CommandLine& line, const std::u16string& arguments) {
    std::vector<std::string> words = {"fennelbright", "--module", Utf8Text(line.modulePath)};
    const std::pair<const char*, const std::string&> places[] = {
        {line.isByHalves ? "--files" : "--device", line.device},
        {"--registry", line.registry},
        {"--state", line.state}};
    for (const auto& [word, place] : places) {
        if (!place.empty()) {
            words.insert(words.end(), {word, place});
        }
    }
    const std::pair<bool, const char*> switches[] = {
        {line.report == ReportForm::Lines, "--report"},
        {line.report == ReportForm::Json, "--report=json"},
        {line.strict, "--strict"},
        {line.rehearse, "--rehearse"},
        {line.noDisplay, "--no-display"}};
    for (const auto& [isSet, word] : switches) {
        if (isSet) {
            words.emplace_back(word);
        }
    }
    if (line.scale > 0) {
        words.insert(words.end(), {"--scale", std::to_string(line.scale)});
    }
    words.emplace_back("--");
    words.push_back(Utf8Text(arguments));
    return words;
}

// Waits for the process. Its exit code; 128 and the number of the signal that ended it.
Result<int> RunHostAgain(const std::vector<std::string>& words) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    pid_t child = 0;
    int status = 0;
    const int error =
        posix_spawn(&child, "/proc/self/exe", nullptr, nullptr, arguments.data(), environ);
    if (error != 0) {
        return Fail("start the program", error);
    }
    while (waitpid(child, &status, 0) != child) {
        if (errno != EINTR) {
            return Fail("wait for the program", errno);
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int RunShortcut(const CommandLine& line, const StartupShortcut& shortcut, RunLog& log) {
    const std::string name = ReadableText(shortcut.path);
    if (shortcut.unread) {
        log.SayUndone(name + ": " + Describe(*shortcut.unread));
        return 0;
    }
    if (!shortcut.arguments) {
        log.Say(name + " is skipped: " +
                (shortcut.target.empty() ? "it is not a shortcut"
                                         : "it starts " + ReadableText(shortcut.target)));
        return 0;
    }
    const Result<int> ended = RunHostAgain(WordsFor(line, *shortcut.arguments));
    if (!ended) {
        log.Say(name + ": " + Describe(ended.error()));
        return EX_OSERR;
    }
    if (*ended != 0) {
        log.Say(name + " ended with exit code " + std::to_string(*ended));
    }
    return *ended;
}

}  // namespace

int BootDevice(const CommandLine& line) {
    RunLog log(line.device);
    Result<DeviceDirectory> device = OpenNamedDevice(line);
    if (!device) {
        log.Say(Describe(device.error()));
        return EX_NOINPUT;
    }
    // Without a lock: that is for the runs themselves.
    HostFiles files(line.rehearse ? std::make_unique<RehearsedTree>(std::move(device->files))
                                  : std::make_unique<FileTree>(std::move(device->files)),
                    nullptr);
    const auto shortcuts = StartupShortcuts(files, line.modulePath);
    if (!shortcuts) {
        log.SayUndone(Describe(shortcuts.error()));
        return log.ExitCode(line.strict);
    }
    // One that could not be read may start it.
    const auto mayBeOurs = [](const StartupShortcut& shortcut) {
        return shortcut.arguments || shortcut.unread;
    };
    if (std::none_of(shortcuts->begin(), shortcuts->end(), mayBeOurs)) {
        log.Say("nothing to run: no shortcut in " + ReadableText(kStartupFolder) + " starts " +
                ReadableText(line.modulePath));
    } else if (line.rehearse) {
        log.Say(
            "each shortcut is rehearsed on the device as it is now, not as the one before it "
            "would leave it");
    }
    int result = 0;
    for (const StartupShortcut& shortcut : *shortcuts) {
        result = WorseExitCode(result, RunShortcut(line, shortcut, log));
    }
    return WorseExitCode(result, log.ExitCode(line.strict));
}

}  // namespace platform
