#include "tests/support/apply_device.h"

#include <algorithm>

#include "core/application.h"
#include "core/option_table.h"
#include "core/wide_text.h"
#include "engine/apply_sequence.h"
#include "platform/device/assembled_device.h"
#include "platform/text/readable_text.h"
#include "settings/settings_file.h"
#include "tests/support/failing_store.h"

const char kQuietTweaks[] =
    "[HKEY_LOCAL_MACHINE\\System\\GWE]\n\"Animate\"=dword:00000001\n"
    "[HKEY_LOCAL_MACHINE\\System\\GWE\\Menu]\n\"AniType\"=dword:00000006\n";

namespace {

constexpr const WCHAR* kModule = TEXT("\\App\\Fennelbright.exe");

void WriteSettingsOf(const ApplyInput& input) {
    CSettings settings;
    for (const Option& option : AllOptions()) {
        if (option.text != nullptr && input.text != nullptr) {
            settings.*option.text = NewSettingsText();
            std::copy_n(input.text, wcslen(input.text), (settings.*option.text).get());
        }
        if (option.position != nullptr) {
            settings.*option.position = input.position;
        }
    }
    std::FILE* const file = OpenSettingsForWriting();
    ASSERT_NE(file, nullptr);
    WriteSettings(file, input.mask, settings);
    ASSERT_EQ(std::fclose(file), 0);
}

}  // namespace

int CollectedBoxes::MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type) {
    EXPECT_EQ(owner, nullptr);
    boxes.push_back('[' + platform::ReadableText(caption) + "] " + platform::ReadableText(text) +
                    (type == MB_OK ? "" : "?"));
    return IDOK;
}

SilentRun RunSilently(platform::DeviceStore& store, bool allowRestart) {
    SilentRun run;
    CollectedBoxes windows;
    const platform::StoreInUse storeInUse(store);
    const platform::WindowsInUse windowsInUse(windows);
    CSettings settings;
    BytesCleaned = 0;
    g_Settings = &settings;
    g_Silent = true;
    try {
        ApplySettings(allowRestart);
    } catch (const DeviceRestarted&) {
        run.restarts = 1;
    }
    g_Settings = nullptr;
    run.isStored = store.StoreRegistry().has_value();
    run.boxes = windows.boxes;
    run.bytesCleaned = BytesCleaned;
    return run;
}

ApplyResult ApplySilently(const ApplyInput& input, int failing, int* calls, int reason) {
    const TemporaryDevice device(input.files);
    device.Make({"App/"});
    if (!input.registry.empty()) {
        WriteFile(device.registry(), input.registry);
    }
    platform::AssembledDevice store(device.OpenFiles(), kModule, device.OpenRegistry(),
                                    ThrowRestarted);
    {
        const platform::StoreInUse inUse(store);
        WriteSettingsOf(input);
    }
    FailingStore faulty(store, failing, reason);
    testing::internal::CaptureStderr();
    const SilentRun run = RunSilently(faulty, input.allowRestart);
    EXPECT_TRUE(run.isStored);
    ApplyResult result{run.boxes,        {},           {},
                       run.bytesCleaned, run.restarts, testing::internal::GetCapturedStderr()};
    result.registry = ReadFile(device.registry());
    result.files = device.Listing();
    std::erase_if(result.files, [](const std::string& entry) { return entry.starts_with("App/"); });
    if (calls != nullptr) {
        *calls = faulty.calls();
    }
    return result;
}
