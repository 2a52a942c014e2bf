#pragma once

#include <optional>
#include <string_view>

#include "platform/text/name_translation.h"

namespace platform {

// Names that the device does not have, for files of the host alone: a prefix that says their
// purpose, and 16 hexadecimal digits.
enum class ReservedFor {
    NewContent,  // a file that is not complete yet
    SetAside,    // a file that is about to be deleted, or gets its own name back
    WayBack,     // the record of that own name; the digits are those of the file set aside
};
std::optional<ReservedFor> PurposeOf(std::string_view host);  // nothing for any other name
bool IsReservedName(std::string_view host);
HostName NewReservedName(ReservedFor purpose = ReservedFor::NewContent);       // of random digits
HostName ReservedCounterpart(std::string_view reserved, ReservedFor purpose);  // same digits

}  // namespace platform
