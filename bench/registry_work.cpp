// Reads the registry of a device directory, or reads it and writes it with one value changed, and
// does nothing else of the program:
//
//     registry_work read DEVICE
//     registry_work write DEVICE

#include <fcntl.h>
#include <sysexits.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "platform/descriptor.h"
#include "platform/registry.h"

namespace {

bool WriteOneValue(platform::Registry& registry) {
    HKEY key = nullptr;
    const auto number = static_cast<DWORD>(getpid());  // another one in each run
    return registry.RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("Software\\Apps"), 0, 0, &key) ==
               ERROR_SUCCESS &&
           registry.RegSetValueExW(key, TEXT("Number"), 0, REG_DWORD,
                                   reinterpret_cast<const BYTE*>(&number),
                                   sizeof number) == ERROR_SUCCESS &&
           registry.RegCloseKey(key) == ERROR_SUCCESS;
}

}  // namespace

int main(int count, char** words) {
    const std::string_view task = count == 3 ? words[1] : "";
    if (task != "read" && task != "write") {
        std::fputs("Usage: registry_work read|write DEVICE\n", stderr);
        return EX_USAGE;
    }
    const platform::Descriptor device(open(words[2], O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::string reason;
    const auto registry = platform::Registry::Open(device.get(), reason);
    if (registry == nullptr) {
        std::fprintf(stderr, "%s: %s\n", words[2], reason.c_str());
        return EX_NOINPUT;
    }
    return task == "read" || WriteOneValue(*registry) ? 0 : EX_IOERR;
}
