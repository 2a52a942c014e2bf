#include "platform/recording_store.h"

#include "engine/apply_sequence.h"
#include "platform/host_text.h"

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
    const std::string step =
        g_ApplyStep > 0 ? "step " + std::to_string(g_ApplyStep) + ": " : std::string();
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

bool RecordingStore::Finish() {
    WriteLine("total: " + Count(filesDeleted_, "file", "files") + " deleted (" +
              Count(bytesDeleted_, "byte", "bytes") + "), " +
              Count(entriesMoved_, "entry", "entries") + " moved, " +
              Count(directoriesMade_, "directory", "directories") + " made, " +
              Count(directoriesRemoved_, "directory", "directories") + " removed");
    return std::fflush(report_) == 0 && written_;
}

}  // namespace platform
