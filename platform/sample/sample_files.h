#pragma once

#include "platform/seam/device_store.h"

namespace platform {

// Where the program lies on a device unless it is said otherwise.
inline constexpr const WCHAR* kDefaultModulePath =
    TEXT("\\Program Files\\Fennelbright\\Fennelbright.exe");

// Fills the empty device in use, which `store` is, with a lived-in handheld: something for every
// task to do, something that must stay beside it, a settings.dat that asks for all of it, and the
// program's help page.
Status FillSampleDevice(DeviceStore& store);

}  // namespace platform
