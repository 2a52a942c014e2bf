#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <string_view>

#include "platform/diagnostics/failure.h"
#include "platform/io/descriptor.h"

namespace platform {

// A stream for writing whose whole content is handed to `publish` when it is closed. Where that
// fails, fclose does too, and errno and `failure`, which must live as long as the stream, say why.
Result<std::FILE*> OpenStreamInMemory(std::function<Status(std::string)> publish, Failure& failure);

// A file of that content, open for reading from its beginning.
Result<Descriptor> OpenFileInMemory(std::string_view content);

}  // namespace platform
