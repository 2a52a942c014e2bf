#include "platform/files/startup_shortcuts.h"

#include <algorithm>

#include "platform/text/name_matching.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

constexpr int kLongestTarget = 1024;

StartupShortcut ReadShortcut(DeviceFiles& files, const WCHAR* name, std::u16string_view program) {
    StartupShortcut shortcut;
    shortcut.path = std::u16string(kStartupFolder) + name;
    std::u16string target(kLongestTarget, u'\0');
    if (files.SHGetShortcutTarget(shortcut.path.c_str(), target.data(), kLongestTarget) != 0) {
        shortcut.target = target.c_str();
        shortcut.arguments = ArgumentsFor(program, shortcut.target);
    } else if (ErrorCodeOf(files.LastFailure()) != DWORD{ERROR_BAD_FORMAT}) {
        shortcut.unread = files.LastFailure();
    }
    return shortcut;
}

}  // namespace

Result<std::vector<StartupShortcut>> StartupShortcuts(DeviceFiles& files,
                                                      std::u16string_view program) {
    std::vector<StartupShortcut> shortcuts;
    WIN32_FIND_DATA data;
    const std::u16string pattern = std::u16string(kStartupFolder) + u"*.lnk";
    const HANDLE find = files.FindFirstFileW(pattern.c_str(), &data);
    for (BOOL found = find != INVALID_HANDLE_VALUE; found != 0;
         found = files.FindNextFileW(find, &data)) {
        if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            shortcuts.push_back(ReadShortcut(files, data.cFileName, program));
        }
    }
    const Failure end = files.LastFailure();
    if (find != INVALID_HANDLE_VALUE) {
        files.FindClose(find);
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

}  // namespace platform
