#include "platform/boot.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "platform/host_names.h"

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
    }
    return shortcut;
}

}  // namespace

std::vector<StartupShortcut> StartupShortcuts(DeviceStore& store, std::u16string_view program) {
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
    store.FindClose(find);
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

int RunHostAgain(const std::vector<std::string>& words) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    pid_t child = 0;
    int status = 0;
    if (posix_spawn(&child, "/proc/self/exe", nullptr, nullptr, arguments.data(), environ) != 0 ||
        waitpid(child, &status, 0) != child) {
        return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace platform
