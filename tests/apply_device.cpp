#include "tests/apply_device.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "core/application.h"
#include "core/options.h"
#include "core/wide_text.h"
#include "engine/apply_sequence.h"
#include "platform/directory_store.h"
#include "platform/host_text.h"
#include "platform/no_windows.h"
#include "platform/window_system.h"
#include "settings/settings_file.h"
#include "tests/failing_store.h"

const char kQuietTweaks[] =
    "[HKEY_LOCAL_MACHINE\\System\\GWE]\n\"Animate\"=dword:00000001\n"
    "[HKEY_LOCAL_MACHINE\\System\\GWE\\Menu]\n\"AniType\"=dword:00000006\n";

namespace {

constexpr const WCHAR* kModule = TEXT("\\App\\Fennelbright.exe");

class CollectedBoxes : public platform::NoWindows {
  public:
    explicit CollectedBoxes(std::vector<std::string>& boxes) : boxes_(boxes) {}

    int MessageBoxW(HWND /*owner*/, const WCHAR* text, const WCHAR* caption,
                    UINT /*type*/) override {
        boxes_.push_back('[' + platform::ReadableText(caption) + "] " +
                         platform::ReadableText(text));
        return IDOK;
    }

  private:
    std::vector<std::string>& boxes_;
};

// Counts the restarts that would end the process.
class RestartingStore : public FailingStore {
  public:
    RestartingStore(platform::DeviceStore& inner, int failing, int& restarts)
        : FailingStore(inner, failing), restarts_(restarts) {}

    BOOL KernelIoControl(DWORD code, void* /*input*/, DWORD /*inputSize*/, void* /*output*/,
                         DWORD /*outputSize*/, DWORD* /*returned*/) override {
        restarts_ += code == IOCTL_HAL_REBOOT ? 1 : 0;
        return 1;
    }

  private:
    int& restarts_;
};

void PutValues(const ApplyInput& input, CSettings& settings) {
    for (const Option& option : AllOptions()) {
        for (const auto& [bit, text] : input.texts) {
            if (bit == option.bit) {
                settings.*option.text = NewSettingsText();
                std::copy_n(text, wcslen(text), (settings.*option.text).get());
            }
        }
        for (const auto& [bit, position] : input.positions) {
            if (bit == option.bit) {
                settings.*option.position = position;
            }
        }
    }
}

void WriteSettingsOf(const ApplyInput& input) {
    CSettings settings;
    PutValues(input, settings);
    std::FILE* const file = OpenSettingsForWriting();
    ASSERT_NE(file, nullptr);
    WriteSettings(file, input.mask, settings);
    ASSERT_EQ(std::fclose(file), 0);
}

void Apply(bool allowRestart) {
    CSettings settings;
    g_Settings = &settings;
    g_Silent = true;
    ApplySettings(allowRestart);
    g_Settings = nullptr;
}

}  // namespace

ApplyResult ApplySilently(const ApplyInput& input, int failing, int* calls) {
    TemporaryDevice device;
    device.Make(input.files);
    device.Make({"App/"});
    if (!input.registry.empty()) {
        WriteFile(device.path() + "/registry.reg", input.registry);
    }
    const platform::Descriptor directory(
        open(device.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::string error;
    auto registry = platform::Registry::Open(directory.get(), error);
    EXPECT_NE(registry, nullptr) << error;
    platform::DirectoryStore store(device.OpenFiles(), kModule, std::move(registry));
    {
        const platform::StoreInUse inUse(store);
        WriteSettingsOf(input);
    }
    ApplyResult result;
    RestartingStore faulty(store, failing, result.restarts);
    CollectedBoxes windows(result.boxes);
    const platform::StoreInUse storeInUse(faulty);
    const platform::WindowsInUse windowsInUse(windows);
    BytesCleaned = 0;
    testing::internal::CaptureStderr();
    Apply(input.allowRestart);
    result.notes = testing::internal::GetCapturedStderr();
    EXPECT_EQ(store.Finish(), "");
    result.bytesCleaned = BytesCleaned;
    result.registry = ReadFile(device.path() + "/registry.reg");
    result.files = device.Listing();
    std::erase_if(result.files, [](const std::string& entry) { return entry.starts_with("App/"); });
    if (calls != nullptr) {
        *calls = faulty.calls();
    }
    return result;
}
