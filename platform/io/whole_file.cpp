#include "platform/io/whole_file.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace platform {

Result<std::string> ReadToEnd(int file, std::size_t limit, std::size_t expected) {
    // One byte more than expected, so that the end shows itself with the first reading.
    std::string bytes(std::min(expected, limit) + 1, '\0');
    std::size_t length = 0;
    for (;;) {
        const ssize_t count = read(file, bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return Fail("read", errno);
        }
        length += static_cast<std::size_t>(count);
        if (length > limit) {
            return Fail("read", EFBIG);
        }
        if (count == 0) {
            bytes.resize(length);
            return bytes;
        }
        if (length == bytes.size()) {
            bytes.resize(std::min(2 * length, limit + 1));
        }
    }
}

Status WriteWhole(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return Fail("write", written == 0 ? ENOSPC : errno);
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

Status SyncEntries(int directory) {
    const bool done =
        fsync(directory) == 0 || errno == EINVAL || errno == ENOTSUP || errno == EBADF;
    return done ? Status() : Fail("store the directory", errno);
}

}  // namespace platform
