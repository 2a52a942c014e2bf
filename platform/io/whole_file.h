#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/diagnostics/failure.h"

namespace platform {

// Reads what is left of an open file of at most `limit` bytes; EFBIG where there is more. One of at
// most `expected` bytes takes two calls.
Result<std::string> ReadToEnd(int file, std::size_t limit, std::size_t expected = 4096);

// Writes all bytes.
Status WriteWhole(int file, std::string_view bytes);

// Stores the entries of a directory safely, where its file system can do that.
Status SyncEntries(int directory);

}  // namespace platform
