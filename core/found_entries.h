#pragma once

#include "core/file_operations.h"

// Whether the last failure was that the entry, or a directory on its path, is not there.
inline bool LastWasNotThere() {
    const DWORD reason = GetLastError();
    return reason == ERROR_FILE_NOT_FOUND || reason == ERROR_PATH_NOT_FOUND;
}

// A search and its current entry; the destructor ends the search. "." and "..", which some
// platforms list, are skipped: they would lead a walk in circles or upwards.
class FoundEntries {
  public:
    FoundEntries() = default;
    explicit FoundEntries(const WCHAR* pattern) { Open(pattern); }
    ~FoundEntries() {
        if (handle_ != INVALID_HANDLE_VALUE) {
            FindClose(handle_);
        }
    }
    FoundEntries(const FoundEntries&) = delete;
    FoundEntries& operator=(const FoundEntries&) = delete;

    // Starts the search. Called once for each object.
    void Open(const WCHAR* pattern) {
        handle_ = FindFirstFileW(pattern, &entry_);
        hasEntry_ = handle_ != INVALID_HANDLE_VALUE;
        if (hasEntry_ && isDotEntry()) {
            Next();
        }
    }

    // Whether there is a current entry. The functions below need one.
    explicit operator bool() const { return hasEntry_; }

    void Next() {
        do {
            hasEntry_ = FindNextFileW(handle_, &entry_) != 0;
        } while (hasEntry_ && isDotEntry());
    }
    const WCHAR* name() const { return entry_.cFileName; }
    bool isDirectory() const { return (entry_.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
    bool isHidden() const { return (entry_.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN) != 0; }
    DWORD sizeLow() const { return entry_.nFileSizeLow; }

  private:
    bool isDotEntry() const {
        const WCHAR* const name = entry_.cFileName;
        return name[0] == TEXT('.') && (name[1] == 0 || (name[1] == TEXT('.') && name[2] == 0));
    }

    HANDLE handle_ = INVALID_HANDLE_VALUE;
    bool hasEntry_ = false;
    WIN32_FIND_DATA entry_;
};
