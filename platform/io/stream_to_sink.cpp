#include "platform/io/stream_to_sink.h"

#include <cerrno>
#include <utility>

namespace platform {

namespace {

struct Stream {
    std::unique_ptr<StreamSink> sink;
    Failure& failure;
    Status written;
};

ssize_t WriteStream(void* cookie, const char* bytes, std::size_t count) {
    auto& stream = *static_cast<Stream*>(cookie);
    if (stream.written) {
        stream.written = stream.sink->Write({bytes, count});
    }
    return stream.written ? static_cast<ssize_t>(count) : 0;
}

int CloseStream(void* cookie) {
    const std::unique_ptr<Stream> stream(static_cast<Stream*>(cookie));
    const Status closed = stream->written ? stream->sink->Close() : stream->written;
    if (closed) {
        return 0;
    }
    stream->failure = closed.error();
    errno = closed.error().error;
    return -1;
}

class ContentInMemory : public StreamSink {
  public:
    explicit ContentInMemory(std::function<Status(std::string)> publish)
        : publish_(std::move(publish)) {}

    Status Write(std::string_view bytes) override {
        content_ += bytes;
        return {};
    }
    Status Close() override { return publish_(std::move(content_)); }

  private:
    std::function<Status(std::string)> publish_;
    std::string content_;
};

}  // namespace

Result<std::FILE*> OpenStreamTo(std::unique_ptr<StreamSink> sink, Failure& failure) {
    auto stream = std::unique_ptr<Stream>(new Stream{std::move(sink), failure, Status()});
    std::FILE* const opened =
        fopencookie(stream.get(), "w",
                    {.read = nullptr, .write = WriteStream, .seek = nullptr, .close = CloseStream});
    if (opened == nullptr) {
        return Fail("open", errno);
    }
    static_cast<void>(stream.release());
    return opened;
}

Result<std::FILE*> OpenStreamInMemory(std::function<Status(std::string)> publish,
                                      Failure& failure) {
    return OpenStreamTo(std::make_unique<ContentInMemory>(std::move(publish)), failure);
}

}  // namespace platform
