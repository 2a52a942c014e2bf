#pragma once

#include <array>
#include <string_view>

#include "core/registry_operations.h"

namespace platform {

// A key that every registry has.
struct RegistryRoot {
    HKEY handle;
    std::u16string_view name;
    std::u16string_view shortName;
};
inline const std::array<RegistryRoot, 4> kRegistryRoots = {
    {{HKEY_CLASSES_ROOT, u"HKEY_CLASSES_ROOT", u"HKCR"},
     {HKEY_CURRENT_USER, u"HKEY_CURRENT_USER", u"HKCU"},
     {HKEY_LOCAL_MACHINE, u"HKEY_LOCAL_MACHINE", u"HKLM"},
     {HKEY_USERS, u"HKEY_USERS", u"HKU"}}};

}  // namespace platform
