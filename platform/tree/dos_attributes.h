#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "core/platform_types.h"

namespace platform {

// The hidden and system attributes of an open directory: those of its extended attribute
// "user.DOSATTRIB", or the file system's own where it is FAT. 0 when there are none.
DWORD HiddenAndSystem(int directory);

// The attributes that the content of a "user.DOSATTRIB" holds, of all bits; 0 when it holds none.
// File servers write it as hexadecimal text, as text and a record, or as a record alone.
DWORD ParseDosAttributes(std::span<const unsigned char> content);

}  // namespace platform
