#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/diagnostics/failure.h"

namespace platform {

// What a stream for writing does with its content.
class StreamSink {
  public:
    StreamSink() = default;
    virtual ~StreamSink() = default;
    StreamSink(const StreamSink&) = delete;
    StreamSink& operator=(const StreamSink&) = delete;

    // Takes what comes next. Nothing is called after a failure.
    virtual Status Write(std::string_view bytes) = 0;

    // All has been taken.
    virtual Status Close() = 0;
};

// A stream for writing that hands its content to the sink. fclose fails where the sink has failed,
// and errno and `failure`, which must live as long as the stream, say why.
Result<std::FILE*> OpenStreamTo(std::unique_ptr<StreamSink> sink, Failure& failure);

// The same for a sink that wants the whole content at once, when the stream is closed.
Result<std::FILE*> OpenStreamInMemory(std::function<Status(std::string)> publish, Failure& failure);

}  // namespace platform
