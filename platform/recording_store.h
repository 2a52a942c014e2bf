#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "platform/forwarding_store.h"

namespace platform {

// Reports what is done to the device: a line for each thing, after it was done, with the step of
// the Apply sequence that did it, and the totals when asked.
class RecordingStore : public ForwardingStore {
  public:
    // `report` stays the caller's.
    RecordingStore(DeviceStore& inner, std::FILE* report);

    BOOL DeleteFileW(const WCHAR* path) override;
    BOOL RemoveDirectoryW(const WCHAR* path) override;
    BOOL CreateDirectoryW(const WCHAR* path, void* security) override;
    BOOL MoveFileW(const WCHAR* oldPath, const WCHAR* newPath) override;

    // Writes the last line. Returns whether the whole report could be written.
    bool Finish();

  private:
    void WriteLine(const std::string& line);

    std::FILE* report_;
    bool written_ = true;
    std::uint64_t filesDeleted_ = 0;
    std::uint64_t bytesDeleted_ = 0;
    std::uint64_t entriesMoved_ = 0;
    std::uint64_t directoriesMade_ = 0;
    std::uint64_t directoriesRemoved_ = 0;
};

}  // namespace platform
