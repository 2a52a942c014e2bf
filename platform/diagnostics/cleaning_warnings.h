#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

// What the user of the option with this bit should know before files in the directory that it names
// are deleted; empty where nothing has to be said, or nothing is named.
std::string WarningAboutCleaning(std::uint32_t option, std::u16string_view directory);

}  // namespace platform
