#include "platform/recording_store.h"

#include <cstring>
#include <optional>
#include <vector>

#include "platform/host_text.h"
#include "platform/run_log.h"

namespace platform {

namespace {

// Asked before the entry goes. A listed name holds no wildcard, so this finds the entry itself.
std::uint64_t SizeOf(DeviceStore& store, const WCHAR* path) {
    WIN32_FIND_DATA data;
    const HANDLE find = store.FindFirstFileW(path, &data);
    if (find == INVALID_HANDLE_VALUE) {
        return 0;
    }
    store.FindClose(find);
    return static_cast<std::uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
}

// A value of the registry, as it came back or went out.
struct Value {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;
};

// Nothing when there is no such value.
std::optional<Value> ReadValue(DeviceStore& store, HKEY key, const WCHAR* name) {
    Value value;
    DWORD size = 0;
    if (store.RegQueryValueExW(key, name, nullptr, &value.type, nullptr, &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    value.bytes.resize(size);
    if (size > 0 && store.RegQueryValueExW(key, name, nullptr, &value.type, value.bytes.data(),
                                           &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return value;
}

// A text in quotes, without the terminators behind it; nothing when the bytes are no text.
std::string ReadableTextOf(const Value& value) {
    std::u16string text(value.bytes.size() / sizeof(WCHAR), u'\0');
    if (!text.empty()) {
        std::memcpy(text.data(), value.bytes.data(), text.size() * sizeof(WCHAR));
    }
    text.erase(text.find_last_not_of(u'\0') + 1);
    return '"' + ReadableText(text) + '"';
}

std::string ReadableValue(const std::optional<Value>& value) {
    if (!value) {
        return "nothing";
    }
    if (value->type == REG_DWORD && value->bytes.size() == sizeof(DWORD)) {
        DWORD number = 0;
        std::memcpy(&number, value->bytes.data(), sizeof number);
        return std::to_string(number);
    }
    if (value->type == REG_SZ && value->bytes.size() % sizeof(WCHAR) == 0) {
        return ReadableTextOf(*value);
    }
    return std::to_string(value->bytes.size()) + " bytes of type " + std::to_string(value->type);
}

std::string RootName(HKEY key) {
    if (key == HKEY_CURRENT_USER) {
        return "HKCU";
    }
    return key == HKEY_LOCAL_MACHINE ? "HKLM" : "?";
}

std::string Count(std::uint64_t count, const char* one, const char* many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

}  // namespace

RecordingStore::RecordingStore(DeviceStore& inner, std::FILE* report)
    : ForwardingStore(inner), report_(report) {
    // What is reported was done: a run that is killed must not take lines with it.
    std::setvbuf(report_, nullptr, _IOLBF, BUFSIZ);
}

void RecordingStore::WriteLine(const std::string& line) {
    const std::string step = LogInUse::Current().step() > 0
                                 ? "step " + std::to_string(LogInUse::Current().step()) + ": "
                                 : std::string();
    written_ = std::fputs((step + line + '\n').c_str(), report_) >= 0 && written_;
}

BOOL RecordingStore::DeleteFileW(const WCHAR* path) {
    const std::uint64_t size = SizeOf(inner(), path);
    const BOOL deleted = inner().DeleteFileW(path);
    if (deleted != 0) {
        ++filesDeleted_;
        bytesDeleted_ += size;
        WriteLine("deleted " + ReadableText(path) + " (" + Count(size, "byte", "bytes") + ")");
    }
    return deleted;
}

BOOL RecordingStore::RemoveDirectoryW(const WCHAR* path) {
    const BOOL removed = inner().RemoveDirectoryW(path);
    if (removed != 0) {
        ++directoriesRemoved_;
        WriteLine("removed directory " + ReadableText(path));
    }
    return removed;
}

BOOL RecordingStore::CreateDirectoryW(const WCHAR* path, void* security) {
    const BOOL made = inner().CreateDirectoryW(path, security);
    if (made != 0) {
        ++directoriesMade_;
        WriteLine("made directory " + ReadableText(path));
    }
    return made;
}

BOOL RecordingStore::MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) {
    const BOOL moved = inner().MoveFileW(oldPath, newPath);
    if (moved != 0) {
        ++entriesMoved_;
        WriteLine("moved " + ReadableText(oldPath) + " to " + ReadableText(newPath));
    }
    return moved;
}

BOOL RecordingStore::SHCreateShortcut(const WCHAR* path, const WCHAR* target) {
    const BOOL made = inner().SHCreateShortcut(path, target);
    if (made != 0) {
        ++shortcutsMade_;
        WriteLine("made shortcut " + ReadableText(path) + " to " + ReadableText(target));
    }
    return made;
}

// The one thing that cannot be told afterwards.
BOOL RecordingStore::KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output,
                                     DWORD outputSize, DWORD* returned) {
    if (code == IOCTL_HAL_REBOOT) {
        WriteLine("restarting the device");
        Finish();
    }
    return inner().KernelIoControl(code, input, inputSize, output, outputSize, returned);
}

std::string RecordingStore::PathBelow(HKEY key, std::u16string_view subkey) const {
    const auto open = openKeys_.find(key);
    std::string path = open != openKeys_.end() ? open->second : RootName(key);
    const std::size_t begin = subkey.find_first_not_of(u'\\');
    if (begin != std::u16string_view::npos) {
        const std::size_t end = subkey.find_last_not_of(u'\\') + 1;
        path += '\\' + ReadableText(subkey.substr(begin, end - begin));
    }
    return path;
}

LONG RecordingStore::RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                                   HKEY* result) {
    const LONG opened = inner().RegOpenKeyExW(key, subkey, options, access, result);
    if (opened == ERROR_SUCCESS) {
        openKeys_[*result] = PathBelow(key, subkey != nullptr ? subkey : TEXT(""));
    }
    return opened;
}

LONG RecordingStore::RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type,
                                    const BYTE* data, DWORD size) {
    const std::string before = ReadableValue(ReadValue(inner(), key, name));
    const LONG written = inner().RegSetValueExW(key, name, reserved, type, data, size);
    const std::string after = ReadableValue(Value{type, {data, data + size}});
    if (written == ERROR_SUCCESS && before != after) {
        ++valuesWritten_;
        WriteLine("wrote [" + PathBelow(key, {}) + "] \"" + ReadableText(name) + "\": " + before +
                  " -> " + after);
    }
    return written;
}

LONG RecordingStore::RegDeleteKeyW(HKEY key, const WCHAR* subkey) {
    const LONG deleted = inner().RegDeleteKeyW(key, subkey);
    if (deleted == ERROR_SUCCESS) {
        ++keysDeleted_;
        WriteLine("deleted key [" + PathBelow(key, subkey) + "]");
    }
    return deleted;
}

LONG RecordingStore::RegCloseKey(HKEY key) {
    openKeys_.erase(key);
    return inner().RegCloseKey(key);
}

bool RecordingStore::Finish() {
    WriteLine("total: " + Count(filesDeleted_, "file", "files") + " deleted (" +
              Count(bytesDeleted_, "byte", "bytes") + "), " +
              Count(entriesMoved_, "entry", "entries") + " moved, " +
              Count(directoriesMade_, "directory", "directories") + " made, " +
              Count(directoriesRemoved_, "directory", "directories") + " removed, " +
              Count(shortcutsMade_, "shortcut", "shortcuts") + " made, " +
              Count(valuesWritten_, "value", "values") + " written, " +
              Count(keysDeleted_, "key", "keys") + " deleted");
    return std::fflush(report_) == 0 && written_;
}

}  // namespace platform
