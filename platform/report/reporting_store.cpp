#include "platform/report/reporting_store.h"

#include <algorithm>
#include <optional>

#include "platform/diagnostics/run_log.h"
#include "platform/registry/text/registry_roots.h"
#include "platform/text/device_paths.h"

namespace platform {

namespace {

// Nothing when there is no such value.
std::optional<ReportedValue> ReadValue(DeviceRegistry& registry, HKEY key, const WCHAR* name) {
    ReportedValue value;
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

std::u16string_view RootName(HKEY key) {
    const auto* const root = std::find_if(kRegistryRoots.begin(), kRegistryRoots.end(),
                                          [key](const auto& each) { return each.handle == key; });
    return root == kRegistryRoots.end() ? u"?" : root->shortName;
}

// Whether a failure leaves things as they were wanted.
bool IsWantedAnyway(const Failure& failure, LONG wanted) {
    const DWORD code = ErrorCodeOf(failure);
    return code == ERROR_FILE_NOT_FOUND || code == static_cast<DWORD>(wanted);
}

std::string RegistryReason(LONG code) {
    switch (code) {
        case ERROR_INVALID_PARAMETER:
            return "the registry's file has no form for it";
        case ERROR_FILE_NOT_FOUND:
        case ERROR_KEY_DELETED:
            return "its key is not there";
        default:
            return "error " + std::to_string(code);
    }
}

}  // namespace

void ReportingStore::Write(const ReportEvent& event) {
    totals_.Count(event);
    for (ReportWriter* const writer : writers_) {
        writer->Write(event);
    }
}

// What the registry has stored before comes first, so that the order is that of the changes.
void ReportingStore::Report(ReportEvent event) {
    SettleRegistry();
    event.step = log_.step();
    Write(event);
}

void ReportingStore::ReportUndone(ReportEvent event) {
    log_.CountUndone();
    if (!event.failure) {
        event.failure = ReasonOf(LastFailure());
    }
    Report(std::move(event));
}

// A search without a wildcard asks whether something is there, and whoever asks reports.
void ReportingStore::ReportSearch(const std::u16string& pattern) {
    const DWORD code = ErrorCodeOf(LastFailure());
    const bool isRead = code == ERROR_NO_MORE_FILES || IsNotThere(LastFailure());
    if (!isRead && pattern.ends_with(u'*')) {
        ReportUndone({ReportAction::ReadDirectory, CanonicalPath(SplitAtName(pattern).directory)});
    }
}

HANDLE ReportingStore::FindFirstFileW(const WCHAR* pattern, WIN32_FIND_DATA* data) {
    const HANDLE find = files().FindFirstFileW(pattern, data);
    if (find == INVALID_HANDLE_VALUE) {
        ReportSearch(pattern);
    } else {
        searches_[find] = pattern;
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
        Report({.action = ReportAction::DeleteFile,
                .path = CanonicalPath(path),
                .bytes = DeletedSize()});
    } else if (!IsNotThere(LastFailure())) {
        ReportUndone({ReportAction::DeleteFile, CanonicalPath(path)});
    }
    return deleted;
}

BOOL ReportingStore::RemoveDirectoryW(const WCHAR* path) {
    const BOOL removed = files().RemoveDirectoryW(path);
    if (removed != 0) {
        Report({ReportAction::RemoveDirectory, CanonicalPath(path)});
    } else if (!IsNotThere(LastFailure()) && !IsWantedAnyway(LastFailure(), ERROR_DIR_NOT_EMPTY)) {
        ReportUndone({ReportAction::RemoveDirectory, CanonicalPath(path)});
    }
    return removed;
}

BOOL ReportingStore::CreateDirectoryW(const WCHAR* path, void* security) {
    const BOOL made = files().CreateDirectoryW(path, security);
    if (made != 0) {
        Report({ReportAction::MakeDirectory, CanonicalPath(path)});
    } else if (!IsWantedAnyway(LastFailure(), ERROR_ALREADY_EXISTS)) {
        ReportUndone({ReportAction::MakeDirectory, CanonicalPath(path)});
    }
    return made;
}

BOOL ReportingStore::MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) {
    const BOOL moved = files().MoveFileW(oldPath, newPath);
    if (moved != 0) {
        Report({ReportAction::MoveEntry, CanonicalPath(oldPath), CanonicalPath(newPath)});
    } else if (!IsWantedAnyway(LastFailure(), ERROR_FILE_NOT_FOUND)) {
        ReportUndone({ReportAction::MoveEntry, CanonicalPath(oldPath), CanonicalPath(newPath)});
    }
    return moved;
}

void ReportingStore::NothingToClean(const WCHAR* directory) {
    ReportUndone({.action = ReportAction::ReadDirectory,
                  .path = CanonicalPath(directory),
                  .failure = "there is no such directory"});
    ForwardingStore::NothingToClean(directory);
}

void ReportingStore::NothingMoves(const WCHAR* source, const WCHAR* destination) {
    ReportUndone({ReportAction::MoveEntry, CanonicalPath(source), CanonicalPath(destination)});
    ForwardingStore::NothingMoves(source, destination);
}

BOOL ReportingStore::SHCreateShortcut(const WCHAR* path, const WCHAR* target) {
    const BOOL made = files().SHCreateShortcut(path, target);
    const ReportEvent event = {ReportAction::MakeShortcut, CanonicalPath(path), target};
    made != 0 ? Report(event) : ReportUndone(event);
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
        Report({std::exchange(erases_, false) ? ReportAction::EraseDevice : ReportAction::Restart});
    }
    const BOOL done =
        system().KernelIoControl(code, input, inputSize, output, outputSize, returned);
    if (done == 0 && code == IOCTL_HAL_REBOOT) {
        ReportUndone({ReportAction::Restart});
    }
    return done;
}

std::u16string ReportingStore::PathBelow(HKEY key, std::u16string_view subkey) const {
    const auto open = openKeys_.find(key);
    std::u16string path(open != openKeys_.end() ? open->second : RootName(key));
    const std::size_t begin = subkey.find_first_not_of(u'\\');
    if (begin != std::u16string_view::npos) {
        const std::size_t end = subkey.find_last_not_of(u'\\') + 1;
        path.append(u"\\").append(subkey.substr(begin, end - begin));
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
LONG ReportingStore::NoteChange(LONG result, ReportEvent change, std::uint64_t before) {
    const std::uint64_t number = ChangesOfRegistry().made;
    change.step = log_.step();
    if (result == ERROR_SUCCESS && number > before) {
        pending_.push_back({number, std::move(change)});
    } else if (result != ERROR_SUCCESS && result != ERROR_INVALID_HANDLE) {
        change.failure = RegistryReason(result);
        ReportUndone(std::move(change));
    }
    return result;
}

LONG ReportingStore::RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type,
                                    const BYTE* data, DWORD size) {
    const std::uint64_t before = ChangesOfRegistry().made;
    ReportEvent change = {.action = ReportAction::WriteValue,
                          .path = PathBelow(key, {}),
                          .other = name,
                          .before = ReadValue(registry(), key, name),
                          .after = ReportedValue{type, {data, data + size}}};
    const LONG written = registry().RegSetValueExW(key, name, reserved, type, data, size);
    return NoteChange(written, std::move(change), before);
}

LONG ReportingStore::RegDeleteKeyW(HKEY key, const WCHAR* subkey) {
    const std::uint64_t before = ChangesOfRegistry().made;
    const LONG deleted = registry().RegDeleteKeyW(key, subkey);
    return NoteChange(deleted, {ReportAction::DeleteKey, PathBelow(key, subkey)}, before);
}

LONG ReportingStore::RegCloseKey(HKEY key) {
    openKeys_.erase(key);
    return registry().RegCloseKey(key);
}

// Changes are stored by the inner store whenever it has to, in the order in which they were made.
void ReportingStore::SettleRegistry() {
    const std::uint64_t stored = ChangesOfRegistry().stored;
    for (; !pending_.empty() && pending_.front().number <= stored; pending_.pop_front()) {
        Pending& change = pending_.front();
        if (IsChangeLost(change.number)) {
            change.event.failure = "another program has deleted its key";
        }
        Write(change.event);
    }
}

Status ReportingStore::StoreRegistry() {
    Status stored = ForwardingStore::StoreRegistry();
    whyNotStored_ = stored ? "" : ReasonOf(stored.error());
    SettleRegistry();
    return stored;
}

ReportTotals ReportingStore::WriteLastEvents() {
    SettleRegistry();
    for (; !pending_.empty(); pending_.pop_front()) {
        pending_.front().event.failure = whyNotStored_;
        Write(pending_.front().event);
    }
    return totals_;
}

}  // namespace platform
