#include "platform/tree/rehearsed_stream.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <utility>

#include "platform/io/whole_file.h"

namespace platform {

namespace {

struct StreamInMemory {
    std::function<Status(std::string)> publish;
    Failure& failure;
    std::string content;
};

ssize_t WriteStream(void* cookie, const char* bytes, std::size_t count) {
    static_cast<StreamInMemory*>(cookie)->content.append(bytes, count);
    return static_cast<ssize_t>(count);
}

int CloseStream(void* cookie) {
    const std::unique_ptr<StreamInMemory> stream(static_cast<StreamInMemory*>(cookie));
    const Status published = stream->publish(std::move(stream->content));
    if (published) {
        return 0;
    }
    stream->failure = published.error();
    errno = published.error().error;
    return -1;
}

}  // namespace

Result<std::FILE*> OpenStreamInMemory(std::function<Status(std::string)> publish,
                                      Failure& failure) {
    auto stream =
        std::unique_ptr<StreamInMemory>(new StreamInMemory{std::move(publish), failure, {}});
    std::FILE* const opened =
        fopencookie(stream.get(), "w",
                    {.read = nullptr, .write = WriteStream, .seek = nullptr, .close = CloseStream});
    if (opened == nullptr) {
        return Fail("open", errno);
    }
    static_cast<void>(stream.release());
    return opened;
}

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
