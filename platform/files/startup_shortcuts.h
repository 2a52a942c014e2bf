#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/seam/device_store.h"

namespace platform {

// The folder whose shortcuts the device starts with, with a backslash at its end.
inline constexpr WCHAR kStartupFolder[] = TEXT("\\Windows\\StartUp\\");

// A shortcut of the StartUp folder.
struct StartupShortcut {
    std::u16string path;
    std::u16string target;                    // its whole text; empty when it is no shortcut
    std::optional<std::u16string> arguments;  // none when it starts another program
    std::optional<Failure> unread;            // why it could not be read; none when it could
};

// The shortcuts of the StartUp folder, by name. `program` is the path of this program on the
// device.
Result<std::vector<StartupShortcut>> StartupShortcuts(DeviceFiles& files,
                                                      std::u16string_view program);

// The arguments with which a shortcut's target starts `program`; none when it starts another one.
// The path can be in quotes or not; what follows it, without leading blanks, are the arguments.
std::optional<std::u16string> ArgumentsFor(std::u16string_view program, std::u16string_view target);

}  // namespace platform
