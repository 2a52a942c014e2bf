#include "platform/diagnostics/failure.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

namespace platform {

namespace {

struct Code {
    int error;
    LONG code;
    const char* words = nullptr;  // where the system's own say little here
};

constexpr Code kCodes[] = {
    {ENOENT, ERROR_FILE_NOT_FOUND},
    {ENOTDIR, ERROR_PATH_NOT_FOUND, "a directory in its path is missing"},
    {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    {EACCES, ERROR_ACCESS_DENIED},
    {EPERM, ERROR_ACCESS_DENIED},
    {EISDIR, ERROR_ACCESS_DENIED, "it is a directory"},
    {EBADF, ERROR_INVALID_HANDLE},
    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {EROFS, ERROR_WRITE_PROTECT},
    {EBUSY, ERROR_SHARING_VIOLATION},
    {ETXTBSY, ERROR_SHARING_VIOLATION},
    {EINVAL, ERROR_INVALID_PARAMETER},
    {ENOSPC, ERROR_DISK_FULL},
    {EDQUOT, ERROR_DISK_FULL},
    {EFBIG, ERROR_DISK_FULL},
    {ENOTEMPTY, ERROR_DIR_NOT_EMPTY},
    {EEXIST, ERROR_ALREADY_EXISTS, "the name is already in use"},
    {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
    {EIO, ERROR_IO_DEVICE},
    {ELOOP, ERROR_CANT_ACCESS_FILE, "a symbolic link, which is not followed"},
    {EXDEV, ERROR_CANT_ACCESS_FILE, "another file system is mounted there"},
};

const Code* Find(int error) {
    const Code* const found = std::find_if(std::begin(kCodes), std::end(kCodes),
                                           [error](const Code& row) { return row.error == error; });
    return found == std::end(kCodes) ? nullptr : found;
}

}  // namespace

std::string ReasonOf(const Failure& failure) {
    const Code* const row = Find(failure.error);
    if (failure.reason != nullptr) {
        return failure.reason;
    }
    return row != nullptr && row->words != nullptr ? row->words : std::strerror(failure.error);
}

std::string Describe(const Failure& failure) {
    const std::string object = failure.object.empty() ? "" : failure.object + ": ";
    return object + "cannot " + failure.tried + ": " + ReasonOf(failure);
}

DWORD ErrorCodeOf(const Failure& failure) {
    const Code* const row = Find(failure.error);
    if (failure.code != ERROR_SUCCESS) {
        return static_cast<DWORD>(failure.code);
    }
    return static_cast<DWORD>(row != nullptr ? row->code : ERROR_GEN_FAILURE);
}

bool IsNotThere(const Failure& failure) {
    const DWORD code = ErrorCodeOf(failure);
    return code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND;
}

}  // namespace platform
