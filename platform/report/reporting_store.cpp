#include "platform/report/reporting_store.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

#include "platform/diagnostics/run_log.h"
#include "platform/registry/text/registry_roots.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

// A value of the registry, as it came back or went out.
struct Value {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;
};

// Nothing when there is no such value.
std::optional<Value> ReadValue(DeviceRegistry& registry, HKEY key, const WCHAR* name) {
    Value value;
    DWORD size = 0;
    if (registry.RegQueryValueExW(key, name, nullptr, &value.type, nullptr, &size) !=
        ERROR_SUCCESS) {
        return std::nullopt;
    }
    value.bytes.resize(size);
    if (size > 0 && registry.RegQueryValueExW(key, name, nullptr, &value.type, value.bytes.data(),
                                              &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return value;
}

// A text in quotes, without the terminators at its end; nothing when the bytes are no text.
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
    const auto* const root = std::find_if(kRegistryRoots.begin(), kRegistryRoots.end(),
                                          [key](const auto& each) { return each.handle == key; });
    return root == kRegistryRoots.end() ? "?" : root->shortName;
}

std::string Count(std::uint64_t count, const char* one, const char* many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

// Whether a failure leaves things as they were wanted.
bool IsWantedAnyway(const Failure& failure, LONG wanted) {
    const DWORD code = ErrorCodeOf(failure);
    return code == ERROR_FILE_NOT_FOUND || code == static_cast<DWORD>(wanted);
}

std::string RegistryReason(LONG code) {
    switch (code) {
        case ERROR_INVALID_PARAMETER:
            return "registry.reg has no form for it";
        case ERROR_FILE_NOT_FOUND:
        case ERROR_KEY_DELETED:
            return "its key is not there";
        default:
            return "error " + std::to_string(code);
    }
}

}  // namespace

ReportingStore::ReportingStore(DeviceStore& inner, std::FILE* report, RunLog& log)
    : ForwardingStore(inner), report_(report), log_(log) {
    // What is reported was done: a run that is killed must not take lines with it.
    if (report_ != nullptr) {
        std::setvbuf(report_, nullptr, _IOLBF, BUFSIZ);
    }
}

void ReportingStore::WriteLine(int step, const std::string& line) {
    if (report_ == nullptr) {
        return;
    }
    const std::string begin = step > 0 ? "step " + std::to_string(step) + ": " : std::string();
    isWritten_ = std::fputs((begin + line + '\n').c_str(), report_) >= 0 && isWritten_;
}

void ReportingStore::Report(const std::string& line) {
    SettleRegistry();
    WriteLine(log_.step(), line);
}

void ReportingStore::ReportUndone(const std::string& what, const std::string& reason) {
    ++notDone_;
    log_.CountUndone();
    Report("not " + what + " (" + reason + ")");
}

void ReportingStore::ReportUndone(const std::string& what) {
    ReportUndone(what, ReasonOf(LastFailure()));
}

// A search without a wildcard asks whether something is there, and whoever asks reports.
void ReportingStore::ReportSearch(const std::string& pattern) {
    const DWORD code = ErrorCodeOf(LastFailure());
    const bool isRead = code == ERROR_NO_MORE_FILES || IsNotThere(LastFailure());
    if (!isRead && pattern.ends_with('*')) {
        ReportUndone("read " + pattern.substr(0, pattern.rfind('\\') + 1));
    }
}

HANDLE ReportingStore::FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) {
    const HANDLE find = files().FindFirstFileW(pattern, data);
    if (find == INVALID_HANDLE_VALUE) {
        ReportSearch(ReadableText(pattern));
    } else {
        searches_[find] = ReadableText(pattern);
    }
    return find;
}

BOOL ReportingStore::FindNextFileW(HANDLE find, WIN32_FIND_DATA* data) {
    const BOOL found = files().FindNextFileW(find, data);
    const auto search = searches_.find(find);
    if (found == 0 && search != searches_.end()) {
        ReportSearch(search->second);
    }
    return found;
}

BOOL ReportingStore::FindClose(HANDLE find) {
    searches_.erase(find);
    return files().FindClose(find);
}

BOOL ReportingStore::DeleteFileW(const WCHAR* path) {
    const BOOL deleted = files().DeleteFileW(path);
    if (deleted != 0) {
        const std::optional<std::uint64_t> size = DeletedSize();
        ++filesDeleted_;
        bytesDeleted_ += size.value_or(0);
        Report("deleted " + ReadableText(path) + " (" +
               (size ? Count(*size, "byte", "bytes") : "size unknown") + ")");
    } else if (!IsNotThere(LastFailure())) {
        ReportUndone("deleted " + ReadableText(path));
    }
    return deleted;
}

BOOL ReportingStore::RemoveDirectoryW(const WCHAR* path) {
    const BOOL removed = files().RemoveDirectoryW(path);
    if (removed != 0) {
        ++directoriesRemoved_;
        Report("removed directory " + ReadableText(path));
    } else if (!IsNotThere(LastFailure()) && !IsWantedAnyway(LastFailure(), ERROR_DIR_NOT_EMPTY)) {
        ReportUndone("removed directory " + ReadableText(path));
    }
    return removed;
}

BOOL ReportingStore::CreateDirectoryW(const WCHAR* path, void* security) {
    const BOOL made = files().CreateDirectoryW(path, security);
    if (made != 0) {
        ++directoriesMade_;
        Report("made directory " + ReadableText(path));
    } else if (!IsWantedAnyway(LastFailure(), ERROR_ALREADY_EXISTS)) {
        ReportUndone("made directory " + ReadableText(path));
    }
    return made;
}

BOOL ReportingStore::MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) {
    const BOOL moved = files().MoveFileW(oldPath, newPath);
    const std::string line = "moved " + ReadableText(oldPath) + " to " + ReadableText(newPath);
    if (moved != 0) {
        ++entriesMoved_;
        Report(line);
    } else if (!IsWantedAnyway(LastFailure(), ERROR_FILE_NOT_FOUND)) {
        ReportUndone(line);
    }
    return moved;
}

void ReportingStore::NothingMoves(const WCHAR* source, const WCHAR* destination) {
    ReportUndone("moved " + ReadableText(source) + " to " + ReadableText(destination));
    ForwardingStore::NothingMoves(source, destination);
}

BOOL ReportingStore::SHCreateShortcut(const WCHAR* path, const WCHAR* target) {
    const BOOL made = files().SHCreateShortcut(path, target);
    const std::string line = "made shortcut " + ReadableText(path) + " to " + ReadableText(target);
    if (made != 0) {
        ++shortcutsMade_;
        Report(line);
    } else {
        ReportUndone(line);
    }
    return made;
}

void ReportingStore::SetCleanRebootFlag() {
    erases_ = true;
    system().SetCleanRebootFlag();
}

// The one thing that cannot be reported afterwards, unless it could not be done.
BOOL ReportingStore::KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output,
                                     DWORD outputSize, DWORD* returned) {
    if (code == IOCTL_HAL_REBOOT) {
        [[maybe_unused]] const Status stored = StoreRegistry();
        Report(std::exchange(erases_, false) ? "erasing the device" : "restarting the device");
    }
    const BOOL done =
        system().KernelIoControl(code, input, inputSize, output, outputSize, returned);
    if (done == 0 && code == IOCTL_HAL_REBOOT) {
        ReportUndone("restarted");
    }
    return done;
}

std::string ReportingStore::PathBelow(HKEY key, std::u16string_view subkey) const {
    const auto open = openKeys_.find(key);
    std::string path = open != openKeys_.end() ? open->second : RootName(key);
    const std::size_t begin = subkey.find_first_not_of(u'\\');
    if (begin != std::u16string_view::npos) {
        const std::size_t end = subkey.find_last_not_of(u'\\') + 1;
        path += '\\' + ReadableText(subkey.substr(begin, end - begin));
    }
    return path;
}

LONG ReportingStore::RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                                   HKEY* result) {
    const LONG opened = registry().RegOpenKeyExW(key, subkey, options, access, result);
    if (opened == ERROR_SUCCESS) {
        openKeys_[*result] = PathBelow(key, subkey != nullptr ? subkey : TEXT(""));
    }
    return opened;
}

// A key that did not open has had its box.
LONG ReportingStore::NoteChange(LONG result, Pending change, std::uint64_t before) {
    change.number = ChangesOfRegistry().made;
    if (result == ERROR_SUCCESS && change.number > before) {
        pending_.push_back(std::move(change));
    } else if (result != ERROR_SUCCESS && result != ERROR_INVALID_HANDLE) {
        ReportUndone(change.place, RegistryReason(result));
    }
    return result;
}

LONG ReportingStore::RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type,
                                    const BYTE* data, DWORD size) {
    const std::uint64_t before = ChangesOfRegistry().made;
    const std::string old = ReadableValue(ReadValue(registry(), key, name));
    const LONG written = registry().RegSetValueExW(key, name, reserved, type, data, size);
    const std::string place = "written [" + PathBelow(key, {}) + "] \"" + ReadableText(name) + '"';
    const std::string change = "wrote" + place.substr(7) + ": " + old + " -> " +
                               ReadableValue(Value{type, {data, data + size}});
    return NoteChange(written, {0, log_.step(), change, place, &valuesWritten_}, before);
}

LONG ReportingStore::RegDeleteKeyW(HKEY key, const WCHAR* subkey) {
    const std::uint64_t before = ChangesOfRegistry().made;
    const LONG deleted = registry().RegDeleteKeyW(key, subkey);
    const std::string place = "deleted key [" + PathBelow(key, subkey) + "]";
    return NoteChange(deleted, {0, log_.step(), place, place, &keysDeleted_}, before);
}

LONG ReportingStore::RegCloseKey(HKEY key) {
    openKeys_.erase(key);
    return registry().RegCloseKey(key);
}

// Changes are stored by the inner store whenever it has to, in the order in which they were made.
void ReportingStore::SettleRegistry() {
    const std::uint64_t stored = ChangesOfRegistry().stored;
    while (!pending_.empty() && pending_.front().number <= stored) {
        const Pending& change = pending_.front();
        const bool isLost = IsChangeLost(change.number);
        ++(isLost ? notDone_ : *change.total);
        WriteLine(change.step,
                  isLost ? "not " + change.place + " (another program has deleted its key)"
                         : change.change);
        pending_.pop_front();
    }
}

Status ReportingStore::StoreRegistry() {
    Status stored = ForwardingStore::StoreRegistry();
    whyNotStored_ = stored ? "" : ReasonOf(stored.error());
    SettleRegistry();
    return stored;
}

Status ReportingStore::Finish() {
    SettleRegistry();
    for (; !pending_.empty(); pending_.pop_front()) {
        ++notDone_;
        WriteLine(pending_.front().step,
                  "not " + pending_.front().place + " (" + whyNotStored_ + ")");
    }
    WriteLine(0, "total: " + Count(filesDeleted_, "file", "files") + " deleted (" +
                     Count(bytesDeleted_, "byte", "bytes") + "), " +
                     Count(entriesMoved_, "entry", "entries") + " moved, " +
                     Count(directoriesMade_, "directory", "directories") + " made, " +
                     Count(directoriesRemoved_, "directory", "directories") + " removed, " +
                     Count(shortcutsMade_, "shortcut", "shortcuts") + " made, " +
                     Count(valuesWritten_, "value", "values") + " written, " +
                     Count(keysDeleted_, "key", "keys") + " deleted, " + std::to_string(notDone_) +
                     " not done");
    if (report_ != nullptr && (std::fflush(report_) != 0 || !isWritten_)) {
        return FailBecause("write the report", "standard output cannot be written");
    }
    return {};
}

}  // namespace platform
