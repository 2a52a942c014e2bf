// Reads the registry of a device directory, or reads it and writes it with one value changed, and
// runs no other part of the program; or parses the text of a registry, without the system calls
// that valgrind does not know:
//
//     registry_work read DEVICE
//     registry_work write DEVICE
//     registry_work parse FILE

#include <fcntl.h>
#include <sysexits.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "platform/io/descriptor.h"
#include "platform/registry/registry_key_operations.h"
#include "platform/registry/text/edited_registry_text.h"

namespace {

bool WriteOneValue(platform::Registry& registry) {
    HKEY key = nullptr;
    const auto number = static_cast<DWORD>(getpid());  // different in each run
    return registry.RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("Software\\Apps"), 0, 0, &key) ==
               ERROR_SUCCESS &&
           registry.RegSetValueExW(key, TEXT("Number"), 0, REG_DWORD,
                                   reinterpret_cast<const BYTE*>(&number),
                                   sizeof number) == ERROR_SUCCESS &&
           registry.RegCloseKey(key) == ERROR_SUCCESS && registry.StoreRegistry();
}

int Parse(const char* path) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(file)), {});
    if (const auto text = platform::EditedRegistryText::Parse(std::move(bytes)); !text) {
        std::fprintf(stderr, "%s\n", platform::Describe(text.error()).c_str());
        return EX_DATAERR;
    }
    return 0;
}

}  // namespace

int main(int count, char** words) {
    const std::string_view task = count == 3 ? words[1] : "";
    if (task == "parse") {
        return Parse(words[2]);
    }
    if (task != "read" && task != "write") {
        std::fputs("Usage: registry_work read|write DEVICE, registry_work parse FILE\n", stderr);
        return EX_USAGE;
    }
    const platform::Descriptor device(open(words[2], O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const auto registry = platform::Registry::Open(device.get());
    if (!registry) {
        std::fprintf(stderr, "%s: %s\n", words[2], platform::Describe(registry.error()).c_str());
        return EX_NOINPUT;
    }
    return task == "read" || WriteOneValue(**registry) ? 0 : EX_IOERR;
}
