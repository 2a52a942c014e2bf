#include "platform/host/boot.h"

#include <spawn.h>
#include <sys/wait.h>
#include <sysexits.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

#include "platform/device/device_directory.h"
#include "platform/diagnostics/run_log.h"
#include "platform/files/file_store.h"
#include "platform/text/device_names.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

constexpr WCHAR kStartupFolder[] = TEXT("\\Windows\\StartUp\\");
constexpr int kLongestTarget = 1024;

StartupShortcut ReadShortcut(DeviceStore& store, const WCHAR* name, std::u16string_view program) {
    StartupShortcut shortcut;
    shortcut.path = std::u16string(kStartupFolder) + name;
    std::u16string target(kLongestTarget, u'\0');
    if (store.SHGetShortcutTarget(shortcut.path.c_str(), target.data(), kLongestTarget) != 0) {
        shortcut.target = target.c_str();
        shortcut.arguments = ArgumentsFor(program, shortcut.target);
    } else if (ErrorCodeOf(store.LastFailure()) != DWORD{ERROR_BAD_FORMAT}) {
        shortcut.unread = store.LastFailure();
    }
    return shortcut;
}

}  // namespace

Result<std::vector<StartupShortcut>> StartupShortcuts(DeviceStore& store,
                                                      std::u16string_view program) {
    std::vector<StartupShortcut> shortcuts;
    WIN32_FIND_DATA data;
    const std::u16string pattern = std::u16string(kStartupFolder) + u"*.lnk";
    const HANDLE find = store.FindFirstFileW(pattern.c_str(), &data);
    for (BOOL found = find != INVALID_HANDLE_VALUE; found != 0;
         found = store.FindNextFileW(find, &data)) {
        if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            shortcuts.push_back(ReadShortcut(store, data.cFileName, program));
        }
    }
    const Failure end = store.LastFailure();
    if (find != INVALID_HANDLE_VALUE) {
        store.FindClose(find);
    }
    if (!IsNotThere(end) && ErrorCodeOf(end) != DWORD{ERROR_NO_MORE_FILES}) {
        return FailOf(end, ReadableText(kStartupFolder));
    }
    std::sort(shortcuts.begin(), shortcuts.end(),
              [](const auto& left, const auto& right) { return left.path < right.path; });
    return shortcuts;
}

std::optional<std::u16string> ArgumentsFor(std::u16string_view program,
                                           std::u16string_view target) {
    const bool isQuoted = target.starts_with(u'"');
    target.remove_prefix(isQuoted ? 1 : 0);
    const std::u16string_view rest = target.substr(std::min(program.size(), target.size()));
    const bool endsThere = isQuoted ? rest.starts_with(u'"') : rest.empty() || rest[0] == u' ';
    if (!endsThere || !SameName(target.substr(0, program.size()), program)) {
        return std::nullopt;
    }
    const std::size_t begin = rest.find_first_not_of(u' ', isQuoted ? 1 : 0);
    return std::u16string(begin == std::u16string_view::npos ? u"" : rest.substr(begin));
}

int WorseExitCode(int left, int right) {
    // Worst first. What is not among them, such as the end by a signal, is worse than all.
    static constexpr int kWorstFirst[] = {EX_OSERR,   1,          EX_CANTCREAT,   EX_TEMPFAIL,
                                          EX_DATAERR, EX_NOINPUT, EX_UNAVAILABLE, EX_IOERR,
                                          EX_CONFIG,  0};
    const auto rank = [](int code) {
        const int* const found = std::find(std::begin(kWorstFirst), std::end(kWorstFirst), code);
        return found == std::end(kWorstFirst) ? -1 : found - std::begin(kWorstFirst);
    };
    return rank(left) <= rank(right) ? left : right;
}

namespace {

// The words of a host that runs one shortcut's command line.
std::vector<std::string> WordsFor(const CommandLine& line, const std::u16string& arguments) {
    std::vector<std::string> words = {"fennelbright", "--device", line.device, "--module",
                                      Utf8Text(line.modulePath)};
    const std::pair<bool, const char*> switches[] = {
        {line.report, "--report"}, {line.strict, "--strict"}, {line.noDisplay, "--no-display"}};
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
        log.Say(name + " is passed over: " +
                (shortcut.target.empty() ? "it is no shortcut"
                                         : "it starts " + ReadableText(shortcut.target)));
        return 0;
    }
    const Result<int> ended = RunHostAgain(WordsFor(line, *shortcut.arguments));
    if (!ended) {
        log.Say(name + ": " + Describe(ended.error()));
        return EX_OSERR;
    }
    if (*ended != 0) {
        log.Say(name + " did not end well: exit code " + std::to_string(*ended));
    }
    return *ended;
}

}  // namespace

int BootDevice(const CommandLine& line) {
    RunLog log(line.device);
    Result<DeviceDirectory> device = OpenDeviceDirectory(line.device.c_str());
    if (!device) {
        log.Say(Describe(device.error()));
        return EX_NOINPUT;
    }
    // Without a lock: that is for the runs themselves.
    FileStore store(std::move(device->files), line.modulePath);
    const auto shortcuts = StartupShortcuts(store, line.modulePath);
    if (!shortcuts) {
        log.SayUndone(Describe(shortcuts.error()));
        return log.ExitCode(line.strict);
    }
    const auto isOurs = [](const StartupShortcut& shortcut) {
        return shortcut.arguments.has_value();
    };
    if (std::none_of(shortcuts->begin(), shortcuts->end(), isOurs)) {
        log.Say("nothing is run: no shortcut in " + ReadableText(kStartupFolder) + " starts " +
                ReadableText(line.modulePath));
    }
    int result = 0;
    for (const StartupShortcut& shortcut : *shortcuts) {
        result = WorseExitCode(result, RunShortcut(line, shortcut, log));
    }
    return WorseExitCode(result, log.ExitCode(line.strict));
}

}  // namespace platform
