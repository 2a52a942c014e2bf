#include "platform/diagnostics/cleaning_warnings.h"

#include <algorithm>

#include "core/option_table.h"
#include "platform/text/device_paths.h"
#include "platform/text/readable_text.h"

namespace platform {

namespace {

const char* NameOf(std::uint32_t option) {
    return std::ranges::find(AllOptions(), option, &Option::bit)->name;
}

}  // namespace

std::string WarningAboutCleaning(std::uint32_t option, std::u16string_view directory) {
    if (directory.empty()) {
        return {};
    }
    const std::string warning =
        "warning: " + std::string(NameOf(option)) + "=" + ReadableText(directory);
    if (ComponentsOf(directory).empty()) {
        return warning + " is the whole device: every run will delete all files on it";
    }
    return directory.ends_with(u'\\')
               ? std::string()
               : warning + " deletes nothing: a directory to clean must end in a backslash";
}

}  // namespace platform
