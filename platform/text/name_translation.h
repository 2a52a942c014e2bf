#pragma once

#include <array>
#include <cstddef>
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

}  // namespace platform
