#include "platform/tree/file_in_memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>

#include "platform/io/whole_file.h"

namespace platform {

Result<Descriptor> OpenFileInMemory(std::string_view content) {
    Descriptor file(memfd_create("rehearsed file", MFD_CLOEXEC));
    if (!file) {
        return Fail("open", errno);
    }
    if (const Status written = WriteWhole(file.get(), content); !written) {
        return tl::unexpected<Failure>(written.error());
    }
    lseek(file.get(), 0, SEEK_SET);
    return file;
}

}  // namespace platform
