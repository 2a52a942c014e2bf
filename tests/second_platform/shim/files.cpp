// Files: the device's root is a directory of a drive.

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "tests/second_platform/shim/handheld.h"

namespace handheld {

namespace {

std::wstring g_root;

// A path of the device on the drive. Nothing, with the reason in GetLastError, if it names nothing
// by its spelling; a wildcard is allowed in the last component if the path is a pattern.
std::optional<std::wstring> OnDrive(std::wstring_view path, bool isPattern = false) {
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
    SetLastError(ERROR_FILE_NOT_FOUND);
    return isValid ? std::optional(result) : std::nullopt;
}

bool IsDirectory(const std::wstring& onDrive) {
    const DWORD attributes = GetFileAttributesW(onDrive.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// Only a directory's path may end in a backslash.
std::optional<std::wstring> EntryOnDrive(std::wstring_view path, bool isPattern = false) {
    std::optional<std::wstring> entry = OnDrive(path, isPattern);
    if (entry && path.ends_with(L'\\') && !IsDirectory(*entry)) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        entry.reset();
    }
    return entry;
}

// Where there is nothing yet.
std::optional<std::wstring> NewOnDrive(std::wstring_view path) {
    std::optional<std::wstring> entry = OnDrive(path);
    if (entry && path.ends_with(L'\\')) {
        *entry += L'\\';
    }
    SetLastError(ERROR_INVALID_NAME);
    return entry;
}

// The desktop has more reasons for the one thing that an entry is not there.
template <typename Result>
Result WithReason(Result result, Result failed, bool keepsDirectory = false) {
    if (result == failed) {
        const DWORD reason = GetLastError();
        if (reason == ERROR_INVALID_NAME || reason == ERROR_BAD_PATHNAME ||
            reason == ERROR_NO_MORE_FILES || (reason == ERROR_DIRECTORY && !keepsDirectory)) {
            SetLastError(ERROR_FILE_NOT_FOUND);
        }
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

HANDLE FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATAW* data) {
    const std::optional<std::wstring> entry = EntryOnDrive(pattern, true);
    HANDLE find = INVALID_HANDLE_VALUE;
    if (entry) {
        find = WithReason(::FindFirstFileW(entry->c_str(), data), INVALID_HANDLE_VALUE);
    }
    if (find != INVALID_HANDLE_VALUE && IsDots(*data) && handheld::FindNextFileW(find, data) == 0) {
        FindClose(find);
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    if (entry && *entry == g_root) {
        data->cFileName[0] = 0;
    }
    return find;
}

BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATAW* data) {
    BOOL found = ::FindNextFileW(find, data);
    while (found != 0 && IsDots(*data)) {
        found = ::FindNextFileW(find, data);
    }
    return found;
}

BOOL DeleteFileW(const WCHAR* path) {
    const auto entry = EntryOnDrive(path);
    return entry ? WithReason(::DeleteFileW(entry->c_str()), FALSE) : FALSE;
}

BOOL RemoveDirectoryW(const WCHAR* path) {
    const auto entry = EntryOnDrive(path);
    return entry ? WithReason(::RemoveDirectoryW(entry->c_str()), FALSE, true) : FALSE;
}

BOOL CreateDirectoryW(const WCHAR* path, void* /*security*/) {
    const auto entry = NewOnDrive(path);
    return entry ? ::CreateDirectoryW(entry->c_str(), nullptr) : FALSE;
}

BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) {
    const auto to = NewOnDrive(newPath);
    const auto from = to ? EntryOnDrive(oldPath) : std::nullopt;
    return from ? WithReason(::MoveFileW(from->c_str(), to->c_str()), FALSE) : FALSE;
}

std::FILE* OpenFile(const WCHAR* path, const WCHAR* mode) {
    const auto entry = EntryOnDrive(path);
    return entry ? ::_wfopen(entry->c_str(), mode) : nullptr;
}

BOOL SHGetShortcutTarget(const WCHAR* path, WCHAR* buffer, int limit) {
    std::FILE* const file = OpenFile(path, L"rb");
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
    const auto entry = EntryOnDrive(path);
    const bool isNew = entry && GetFileAttributesW(entry->c_str()) == INVALID_FILE_ATTRIBUTES;
    std::FILE* const file = isNew ? OpenFile(path, L"wb") : nullptr;
    if (file == nullptr) {
        return FALSE;
    }
    std::string bytes(3 * std::wcslen(target) + 1, 0);
    WideCharToMultiByte(CP_UTF8, 0, target, -1, bytes.data(), static_cast<int>(bytes.size()),
                        nullptr, nullptr);
    std::fprintf(file, "%u#%s", static_cast<unsigned>(std::wcslen(target)), bytes.c_str());
    return std::fclose(file) == 0;
}

// The executable lies on every device where it lies on its drive.
DWORD GetModuleFileNameW(HINSTANCE module, WCHAR* buffer, DWORD limit) {
    std::array<WCHAR, MAX_PATH> path{};
    const DWORD length = ::GetModuleFileNameW(module, path.data(), MAX_PATH);
    if (length < 2 || length - 2 >= limit) {
        return 0;
    }
    std::copy(path.begin() + 2, path.begin() + length + 1, buffer);
    return length - 2;
}

}  // namespace handheld
