// Any bytes as settings.dat give terminated texts or null, and what was read can be written.

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "core/application.h"
#include "core/option_table.h"
#include "core/wide_text.h"
#include "settings/settings_file.h"
#include "tests/support/files_alone.h"

namespace {

// A device whose one file is the input.
class InputStore : public FilesAlone {
  public:
    InputStore(const std::uint8_t* data, std::size_t size)
        : FilesAlone(platform::Descriptor(), u"\\Fennelbright.exe"), data_(data), size_(size) {}

    std::FILE* _wfopen(const WCHAR* /*path*/, const WCHAR* /*mode*/) override {
        return size_ == 0 ? nullptr : fmemopen(const_cast<std::uint8_t*>(data_), size_, "rb");
    }

  private:
    const std::uint8_t* data_;
    std::size_t size_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    g_Silent = true;  // there are no controls that a load could fill
    InputStore store(data, size);
    const platform::StoreInUse inUse(store);
    CSettings settings;
    const auto mask = static_cast<std::uint32_t>(LoadSettings(settings));
    bool whole = true;
    for (const Option& option : AllOptions()) {
        if (option.text != nullptr && (mask & option.bit) != 0) {
            const SettingsText& text = settings.*option.text;
            whole = whole && text != nullptr;
            if (text != nullptr && (!whole || wcslen(text.get()) >= kTextCapacity)) {
                std::abort();
            }
        }
    }
    std::FILE* const sink = std::fopen("/dev/null", "wb");
    WriteSettings(sink, mask, settings);
    std::fclose(sink);
    return 0;
}
