#include "platform/io/whole_file.h"

#include <unistd.h>

#include <cerrno>

namespace platform {

Result<std::string> ReadToEnd(int file, std::size_t limit) {
    std::string bytes(limit + 1, '\0');  // one more shows that there is more
    std::size_t length = 0;
    for (ssize_t count = 1; count != 0 && length <= limit;) {
        count = read(file, bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno != EINTR) {
            return Fail("read", errno);
        }
        length += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    if (length > limit) {
        return Fail("read", EFBIG);
    }
    bytes.resize(length);
    return bytes;
}

}  // namespace platform
