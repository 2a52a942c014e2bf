#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/diagnostics/failure.h"

namespace platform {

// The handheld's shortcut files: a number, "#" and the command line that the shortcut starts.
//
// The number is that of the command line's characters, but nothing that reads shortcuts has ever
// looked at it, and wrong ones are common. Lines that begin with ";" may stand in front. The
// command line ends at the line's end; a "?", which no path can hold, ends it too and begins the
// name of an icon. The text is UTF-8 or else CP1252, or UTF-16 with its byte order mark.

// The command line in a shortcut's content, without blanks around it, which may leave nothing. No
// value when the content is no shortcut's.
std::optional<std::u16string> ShortcutTarget(std::string_view content);

// The same from an open file; ERROR_BAD_FORMAT when it holds no shortcut or is larger than any.
Result<std::u16string> ReadShortcut(int file);

// The content of a shortcut that starts `target`.
std::string ShortcutContent(std::u16string_view target);

}  // namespace platform
