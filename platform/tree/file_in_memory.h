#pragma once

#include <string_view>

#include "platform/diagnostics/failure.h"
#include "platform/io/descriptor.h"

namespace platform {

// A file of that content, open for reading from its beginning.
Result<Descriptor> OpenFileInMemory(std::string_view content);

}  // namespace platform
