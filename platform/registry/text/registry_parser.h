#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/diagnostics/failure.h"
#include "platform/registry/text/registry_model.h"

namespace platform {

// The largest file that is read, in bytes; real ones have a few million.
inline constexpr std::size_t kRegistryTextLimit = std::size_t{256} << 20;

// Reads a registry file with these bytes; one without keys, of the usual form, when there are none.
// Fails when they are no registry file; the failure's object is the line: "line 3".
// The time is in proportion to the bytes, and the memory at most 40 times as much as they take.
Result<RegistryModel> ParseRegistry(std::string bytes);

}  // namespace platform
