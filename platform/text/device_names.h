#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "core/platform_types.h"

// The names that entries of the host's file system have on the device.
//
// Every host name has exactly one device name. Valid UTF-8 maps to UTF-16. A byte that is not part
// of it, or stands for a character that the handheld does not allow in names, maps to the escape
// U+F000 + byte, as do the bytes of U+F000 to U+F0FF themselves. A device name that no host name
// maps to names nothing.

namespace platform {

inline constexpr WCHAR kEscapeBase = 0xF000;

// A name of at most `Capacity - 1` units, terminated.
template <typename Unit, std::size_t Capacity>
class BoundedName {
  public:
    BoundedName() { units_[0] = Unit(); }

    // Returns whether it fitted.
    bool Append(Unit unit) {
        if (length_ + 1 >= Capacity) {
            return false;
        }
        units_[length_++] = unit;
        units_[length_] = 0;
        return true;
    }

    const Unit* c_str() const { return units_.data(); }
    std::basic_string_view<Unit> view() const { return {units_.data(), length_}; }

  private:
    std::array<Unit, Capacity> units_;
    std::size_t length_ = 0;
};

using HostName = BoundedName<char, 1024>;  // some file systems count characters, not bytes
using DeviceName = BoundedName<WCHAR, 256>;

// The device name of the host entry `host`. Empty when it would be too long: then the device does
// not have the entry.
DeviceName DeviceNameOf(std::string_view host);

// Puts the name of the host entry that `device` names into `host`. Returns false when no host entry
// can have that device name: ".", "..", the empty and the too long one among them.
bool HostNameOf(std::u16string_view device, HostName& host);

// The unit that stands for all cases of a letter. One unit maps to one, as the handheld has it, and
// no letter outside ASCII maps into it.
WCHAR FoldUnit(WCHAR unit);

bool SameName(std::u16string_view left, std::u16string_view right);  // without regard to case
std::uint32_t NameHash(std::u16string_view name);                    // equal for the same name

// Whether the handheld's search pattern `pattern` matches `name`: "*" stands for any characters,
// "?" for one, and "*.*" for every name.
bool MatchesPattern(std::u16string_view pattern, std::u16string_view name);

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
