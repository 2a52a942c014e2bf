// Reads any bytes as a shortcut and any command line as a target, on a device without files.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include "engine/shortcut_target_lookup.h"
#include "platform/files/shortcut_file_format.h"
#include "tests/support/files_alone.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static FilesAlone store(platform::Descriptor(), u"\\Fennelbright.exe");
    static const platform::StoreInUse inUse(store);
    const std::optional<std::u16string> target =
        platform::ShortcutTarget({reinterpret_cast<const char*>(data), size});
    if (!target || target->size() >= 1024) {
        return 0;
    }
    if (LookUpTarget(*target) == LookupResult::Failed ||
        platform::ShortcutTarget(platform::ShortcutContent(*target)) != target) {
        std::abort();
    }
    return 0;
}
