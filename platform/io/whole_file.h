#pragma once

#include <cstddef>
#include <string>

#include "platform/diagnostics/failure.h"

namespace platform {

// Reads what is left of an open file of at most `limit` bytes; fails where there is more.
Result<std::string> ReadToEnd(int file, std::size_t limit);

}  // namespace platform
