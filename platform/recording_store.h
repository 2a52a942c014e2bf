#pragma once

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <string_view>

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
    BOOL SHCreateShortcut(const WCHAR* path, const WCHAR* target) override;
    BOOL KernelIoControl(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                         DWORD* returned) override;

    // A value that is written as it was already is not reported.
    LONG RegOpenKeyExW(HKEY key, const WCHAR* subkey, DWORD options, DWORD access,
                       HKEY* result) override;
    LONG RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                        DWORD size) override;
    LONG RegDeleteKeyW(HKEY key, const WCHAR* subkey) override;
    LONG RegCloseKey(HKEY key) override;

    // Writes the last line. Returns whether the whole report could be written.
    bool Finish();

  private:
    void WriteLine(const std::string& line);
    std::string PathBelow(HKEY key, std::u16string_view subkey) const;

    std::FILE* report_;
    std::map<HKEY, std::string> openKeys_;  // the path of each, for people
    bool written_ = true;
    std::uint64_t filesDeleted_ = 0;
    std::uint64_t bytesDeleted_ = 0;
    std::uint64_t entriesMoved_ = 0;
    std::uint64_t directoriesMade_ = 0;
    std::uint64_t directoriesRemoved_ = 0;
    std::uint64_t shortcutsMade_ = 0;
    std::uint64_t valuesWritten_ = 0;
    std::uint64_t keysDeleted_ = 0;
};

}  // namespace platform
