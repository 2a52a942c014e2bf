#pragma once

#include <cstdint>
#include <string_view>

#include "core/platform_types.h"

namespace platform {

// The unit that stands for all cases of a letter. One unit maps to one, as the handheld has it, and
// no letter outside ASCII maps into it.
WCHAR FoldUnit(WCHAR unit);

bool SameName(std::u16string_view left, std::u16string_view right);  // without regard to case
std::uint32_t NameHash(std::u16string_view name);                    // equal for the same name

// Whether the handheld's search pattern `pattern` matches `name`: "*" stands for any characters,
// "?" for one, and ".*" at the end also for nothing.
bool MatchesPattern(std::u16string_view pattern, std::u16string_view name);

}  // namespace platform
