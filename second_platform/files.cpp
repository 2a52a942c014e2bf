// Files: the device's root is a directory of a drive.

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "core/handheld_operations.h"
#include "second_platform/handheld.h"

namespace {

std::wstring g_root;

constexpr const WCHAR* kNothing = L"|";  // which no name has in it

// A path of the device on the drive, kNothing if it names nothing by its spelling. A wildcard is
// allowed in the last component if the path is a pattern.
std::wstring OnDrive(std::wstring_view path, bool isPattern = false) {
    std::wstring result = g_root;
    bool isValid = !path.empty();
    for (std::size_t begin = path.find_first_not_of(L'\\'); begin != path.npos;) {
        const std::size_t end = std::min(path.find(L'\\', begin), path.size());
        const std::wstring_view name = path.substr(begin, end - begin);
        const bool mayBePattern = isPattern && end == path.size();
        isValid = isValid && name != L"." && name != L".." &&
                  name.find_first_of(mayBePattern ? L"/:\"<>|" : L"/:\"<>|*?") == name.npos;
        result.append(1, L'\\').append(name);
        begin = path.find_first_not_of(L'\\', end);
    }
    return isValid ? result : kNothing;
}

bool IsDirectory(const std::wstring& onDrive) {
    const DWORD attributes = GetFileAttributesW(onDrive.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// Only a directory's path may end in a backslash.
std::wstring EntryOnDrive(std::wstring_view path, bool isPattern = false) {
    const std::wstring entry = OnDrive(path, isPattern);
    return path.ends_with(L'\\') && !IsDirectory(entry) ? kNothing : entry;
}

// Where there is nothing yet.
std::wstring NewOnDrive(std::wstring_view path) {
    return OnDrive(path) + (path.ends_with(L'\\') ? L"\\" : L"");
}

// The desktop has more reasons for the one thing that an entry is not there.
template <typename Result>
Result WithReason(Result result, Result failed = Result(), bool keepsDirectory = false) {
    const DWORD reason = GetLastError();
    if (result == failed &&
        (reason == ERROR_INVALID_NAME || reason == ERROR_BAD_PATHNAME ||
         reason == ERROR_NO_MORE_FILES || (reason == ERROR_DIRECTORY && !keepsDirectory))) {
        SetLastError(ERROR_FILE_NOT_FOUND);
    }
    return result;
}

bool IsDots(const WIN32_FIND_DATAW& data) {
    const std::wstring_view name = data.cFileName;
    return name == L"." || name == L"..";
}

std::wstring Decoded(const std::string& bytes) {
    if (bytes.starts_with("\xFF\xFE")) {
        std::wstring text(bytes.size() / 2 - 1, 0);
        std::memcpy(text.data(), bytes.data() + 2, 2 * text.size());
        return text;
    }
    const int size = static_cast<int>(bytes.size());
    std::wstring text(bytes.size(), 0);
    const auto decode = [&](UINT page, DWORD flags) {
        return MultiByteToWideChar(page, flags, bytes.data(), size, text.data(), size);
    };
    const int length = decode(CP_UTF8, MB_ERR_INVALID_CHARS);
    text.resize(static_cast<std::size_t>(length != 0 ? length : decode(1252, 0)));
    return text.starts_with(L'\xFEFF') ? text.substr(1) : text;
}

// The command line in a shortcut's text; nothing if the text is no shortcut's.
std::optional<std::wstring> Target(std::wstring text) {
    while (text.starts_with(L';')) {
        const std::size_t end = std::min(text.find_first_of(L"\r\n"), text.size());
        text.erase(0, std::min(text.find_first_not_of(L"\r\n", end), text.size()));
    }
    const std::size_t mark = text.find_first_not_of(L"0123456789");
    if (mark == 0 || mark == text.npos || text[mark] != L'#') {
        return std::nullopt;
    }
    constexpr std::wstring_view kEnds(L"\r\n\x1A?\0", 5);
    text = text.substr(mark + 1, text.find_first_of(kEnds, mark) - mark - 1);
    text.erase(0, text.find_first_not_of(L" \t"));
    text.erase(text.find_last_not_of(L" \t") + 1);
    return text;
}

}  // namespace

void UseRoot(const std::wstring& root) {
    g_root = root;
}

extern "C" {

BOOL HandheldFindNextFileW(HANDLE find, WIN32_FIND_DATAW* data) {
    BOOL found = FindNextFileW(find, data);
    while (found != 0 && IsDots(*data)) {
        found = FindNextFileW(find, data);
    }
    return found;
}

HANDLE HandheldFindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATAW* data) {
    const std::wstring entry = EntryOnDrive(pattern, true);
    const HANDLE find = WithReason(FindFirstFileW(entry.c_str(), data), INVALID_HANDLE_VALUE);
    if (find != INVALID_HANDLE_VALUE && IsDots(*data) && HandheldFindNextFileW(find, data) == 0) {
        FindClose(find);
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    if (entry == g_root) {
        data->cFileName[0] = 0;
    }
    return find;
}

BOOL HandheldDeleteFileW(const WCHAR* path) {
    return WithReason(DeleteFileW(EntryOnDrive(path).c_str()));
}

BOOL HandheldRemoveDirectoryW(const WCHAR* path) {
    return WithReason(RemoveDirectoryW(EntryOnDrive(path).c_str()), FALSE, true);
}

BOOL HandheldCreateDirectoryW(const WCHAR* path, void* /*security*/) {
    return CreateDirectoryW(NewOnDrive(path).c_str(), nullptr);
}

BOOL HandheldMoveFileW(const WCHAR* oldPath, const WCHAR* newPath) {
    return WithReason(MoveFileW(EntryOnDrive(oldPath).c_str(), NewOnDrive(newPath).c_str()));
}

std::FILE* Handheld_wfopen(const WCHAR* path, const WCHAR* mode) {
    return _wfopen(EntryOnDrive(path).c_str(), mode);
}

// The executable lies on every device where it lies on its drive.
DWORD HandheldGetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD limit) {
    std::array<WCHAR, MAX_PATH> path{};
    const DWORD length = GetModuleFileNameW(module, path.data(), MAX_PATH) - 2;
    if (length >= limit) {
        return 0;
    }
    std::copy(path.begin() + 2, path.begin() + 3 + length, buffer);
    return length;
}
}

BOOL SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit) {
    std::FILE* const file = Handheld_wfopen(path, L"rb");
    if (file == nullptr) {
        return FALSE;
    }
    std::string bytes(4097, 0);
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    std::fclose(file);
    const auto target = bytes.size() > 4096 ? std::nullopt : Target(Decoded(bytes));
    if (!target || target->size() >= static_cast<std::size_t>(limit)) {
        return FALSE;
    }
    *std::copy(target->begin(), target->end(), buffer) = 0;
    return TRUE;
}

BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target) {
    const bool isNew = GetFileAttributesW(EntryOnDrive(path).c_str()) == INVALID_FILE_ATTRIBUTES;
    std::FILE* const file = isNew ? Handheld_wfopen(path, L"wb") : nullptr;
    if (file == nullptr) {
        return FALSE;
    }
    std::string bytes(3 * std::wcslen(target) + 1, 0);
    WideCharToMultiByte(CP_UTF8, 0, target, -1, bytes.data(), static_cast<int>(bytes.size()),
                        nullptr, nullptr);
    std::fprintf(file, "%u#%s", static_cast<unsigned>(std::wcslen(target)), bytes.c_str());
    return std::fclose(file) == 0;
}
